#pragma once

#include <QMap>
#include <QStringList>

namespace brimlet {

// The folders in which a program may keep things: home, those named by XDG variables, and the one
// for temporary files. In a private desktop all of them are the test's own.

/// The path with its folder's variable in place of the folder, as in "$XDG_CACHE_HOME/a"; itself
/// when it is in none of them.
[[nodiscard]] QString named(const QString& path);

/// The path that a name of that form stands for.
[[nodiscard]] QString unnamed(const QString& name);

/// All that is in these folders, by name, with words that change when the thing does. What the
/// desktop's own pieces keep there is left out, and so is a folder's time, which changes with what
/// is in it.
[[nodiscard]] QMap<QString, QString> kept();

/// The files in these folders that hold the text in one of the ways a program might write it.
[[nodiscard]] QStringList filesHolding(const QString& text);

/// Notes the name of every file that is made in a folder or renamed into it.
class FolderWatch final {
public:
    explicit FolderWatch(const QString& folder);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// Those since the last call.
    [[nodiscard]] QStringList names() const;

private:
    int m_descriptor;
};

} // namespace brimlet
