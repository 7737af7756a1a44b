#include "endpoint/refusal_queue_t.h"

#include <utility>

namespace comunication {

bool refusal_queue_t::push(const QString& _user, outgoing_t _message) {
    int& count = of_user[_user];
    if (count >= most_of_user) {
        return false;
    }
    ++count;
    waiting.push_back({_user, std::move(_message)});
    return true;
}

outgoing_t refusal_queue_t::pop() {
    entry_t first = std::move(waiting.front());
    waiting.pop_front();
    const auto count = of_user.find(first.user);
    if (--*count == 0) {
        of_user.erase(count);
    }
    return std::move(first.message);
}

void refusal_queue_t::clear() {
    waiting.clear();
    of_user.clear();
}

}  // namespace comunication
