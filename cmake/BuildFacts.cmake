# Writes OUTPUT, a header with what this build is made of; run at every build, by
# cmake -D SOURCE=... -D OUTPUT=... -P. The header changes only when branch or commit do, so that an
# unchanged tree compiles nothing: the time is that of the commit's first build.
function(ask_git _variable)
    execute_process(COMMAND git -C ${SOURCE} ${ARGN}
        OUTPUT_VARIABLE answer RESULT_VARIABLE status ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT status STREQUAL "0" OR answer STREQUAL "")
        set(answer unknown)
    endif()
    set(${_variable} ${answer} PARENT_SCOPE)
endfunction()

ask_git(branch rev-parse --abbrev-ref HEAD)
ask_git(commit describe --always --abbrev=12 --exclude=*)
string(CONCAT facts
    "constexpr const char* build_branch = \"${branch}\";\n"
    "constexpr const char* build_commit = \"${commit}\";\n")
if(EXISTS ${OUTPUT})
    file(READ ${OUTPUT} former)
    string(FIND "${former}" "${facts}" place)
    if(NOT place EQUAL -1)
        return()
    endif()
endif()
string(TIMESTAMP time "%Y-%m-%dT%H:%M:%SZ" UTC)
file(WRITE ${OUTPUT} "#pragma once\n\n${facts}constexpr const char* build_time = \"${time}\";\n")
