#pragma once

#include <sys/socket.h>
#include <sys/types.h>
#include <sys/un.h>

#include <QString>
#include <optional>

namespace control {

/// The control socket's place in a data folder. It goes by the folder itself, which is held open,
/// so that a path may have any length and nobody can exchange the folder between two steps.
class control_place_t {
 public:
    /// @p _folder path of the data folder
    explicit control_place_t(const QString& _folder);
    Q_DISABLE_COPY_MOVE(control_place_t)
    ~control_place_t();

    /// Whose the folder is; nothing: there is none, and the rest is of no use. errno says why.
    std::optional<uid_t> owner() const { return folder_owner; }

    /// To be bound or connected to; valid as long as this object.
    sockaddr_un address() const;

    /// Takes away what is left of a server that was killed; true: nothing has the name.
    bool remove() const;
    /// Where root serves another user's folder, that user may come in, too.
    void give_to_owner() const;

 private:
    int descriptor;
    std::optional<uid_t> folder_owner;
};

}  // namespace control
