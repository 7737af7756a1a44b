#pragma once

#include <dlfcn.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <memory>
#include <random>

/// Records what this process writes and syncs below a folder, and makes folders as a power cut
/// could have left them: what was synced is there, of everything else any part. The functions below
/// stand in front of the C library's; to be included in one source of a test whose target has
/// ENABLE_EXPORTS. Memory that is mapped is not recorded: nothing that is mapped has to last.
namespace recorded_disk {

enum class kind_t { write, cut, sync, create, remove, rename };

struct call_t {
    kind_t kind;
    QString path;
    qint64 offset = 0;  ///< or the new size
    QByteArray bytes{};
    QString target{};
};

inline QString root;  ///< empty: nothing is recorded
inline QList<call_t> calls;

template <class function_t>
function_t* behind(const char* _name) {
    return reinterpret_cast<function_t*>(::dlsym(RTLD_NEXT, _name));
}

inline bool is_recorded(const QString& _path) {
    return !root.isEmpty() && (_path == root || _path.startsWith(root + QLatin1Char('/'))) &&
           !_path.endsWith(QLatin1String(".opening"));
}

inline QString path_of(int _file) {
    // Not while nothing is recorded: this is called by whatever writes.
    return root.isEmpty() ? QString()
                          : QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(_file));
}

inline void note(const call_t& _call) {
    if (is_recorded(_call.path)) {
        calls.append(_call);
    }
}

/// A disk that has seen calls, as it is at one moment.
class disk_t {
 public:
    void see(const call_t& _call) {
        switch (_call.kind) {
            case kind_t::create:
                if (!now.contains(_call.path)) {
                    now.insert(_call.path, std::make_shared<file_t>());
                }
                break;
            case kind_t::write:
            case kind_t::cut:
                file(_call.path)->pending.append(_call);
                break;
            case kind_t::sync:
                _call.path == root ? sync_names() : file(_call.path)->sync();
                break;
            case kind_t::remove:
                now.remove(_call.path);
                break;
            case kind_t::rename:
                now.insert(_call.target, now.take(_call.path));
                break;
        }
    }

    /// Writes what a cut of power leaves into @p _folder.
    template <class random_t>
    void leave(const QString& _folder, random_t& _random) const {
        const bool names_are_new = (_random() & 1) != 0;
        const auto& names = names_are_new ? now : safe;
        for (auto each = names.begin(); each != names.end(); ++each) {
            QFile made(_folder + each.key().mid(root.size()));
            if (each.value() && made.open(QIODevice::WriteOnly)) {
                made.write(each.value()->left(_random));
            }
        }
    }

 private:
    struct file_t {
        QByteArray safe;
        QList<call_t> pending;

        static void apply(const call_t& _call, QByteArray* _content) {
            if (_call.kind == kind_t::cut) {
                _content->resize(int(_call.offset));
                return;
            }
            if (_content->size() < _call.offset + _call.bytes.size()) {
                _content->append(
                    QByteArray(int(_call.offset + _call.bytes.size()) - _content->size(), '\0'));
            }
            _content->replace(int(_call.offset), _call.bytes.size(), _call.bytes);
        }
        void sync() {
            for (const call_t& call : std::as_const(pending)) {
                apply(call, &safe);
            }
            pending.clear();
        }
        /// None of the unsynced, all, or any of them.
        template <class random_t>
        QByteArray left(random_t& _random) const {
            QByteArray content = safe;
            const unsigned choice = unsigned(_random()) % 4;
            for (const call_t& call : pending) {
                if (choice == 1 || (choice > 1 && (_random() & 1) != 0)) {
                    apply(call, &content);
                }
            }
            return content;
        }
    };
    using names_t = QMap<QString, std::shared_ptr<file_t>>;

    std::shared_ptr<file_t> file(const QString& _path) {
        auto& found = now[_path];
        if (!found) {
            found = std::make_shared<file_t>();
        }
        return found;
    }
    void sync_names() { safe = now; }

    names_t now;   ///< names as programs see them
    names_t safe;  ///< and as they are on the medium
};

}  // namespace recorded_disk

extern "C" {

ssize_t write(int _file, const void* _bytes, size_t _size) {
    using namespace recorded_disk;
    if (const QString path = path_of(_file); is_recorded(path)) {
        note({kind_t::write, path, ::lseek(_file, 0, SEEK_CUR),
              QByteArray(static_cast<const char*>(_bytes), int(_size))});
    }
    return behind<decltype(write)>("write")(_file, _bytes, _size);
}

ssize_t pwrite64(int _file, const void* _bytes, size_t _size, off64_t _offset) {
    using namespace recorded_disk;
    note({kind_t::write, path_of(_file), _offset,
          QByteArray(static_cast<const char*>(_bytes), int(_size))});
    return behind<decltype(pwrite64)>("pwrite64")(_file, _bytes, _size, _offset);
}

int ftruncate64(int _file, off64_t _size) noexcept {
    using namespace recorded_disk;
    note({kind_t::cut, path_of(_file), _size});
    return behind<int(int, off64_t)>("ftruncate64")(_file, _size);
}

int fdatasync(int _file) {
    using namespace recorded_disk;
    note({kind_t::sync, path_of(_file)});
    return behind<decltype(fdatasync)>("fdatasync")(_file);
}

int fsync(int _file) {
    using namespace recorded_disk;
    note({kind_t::sync, path_of(_file)});
    return behind<decltype(fsync)>("fsync")(_file);
}

int unlink(const char* _path) noexcept {
    using namespace recorded_disk;
    note({kind_t::remove, QFile::decodeName(_path)});
    return behind<int(const char*)>("unlink")(_path);
}

int rename(const char* _from, const char* _to) noexcept {
    using namespace recorded_disk;
    note({kind_t::rename, QFile::decodeName(_from), 0, {}, QFile::decodeName(_to)});
    return behind<int(const char*, const char*)>("rename")(_from, _to);
}

}  // extern "C"
