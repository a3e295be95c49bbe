#pragma once

#include <QMap>
#include <QStringList>

namespace brimlet {

// The folders in which a program may store files: home, those of the XDG variables, and the one for
// temporary files. In a private desktop all of them belong to the test.

/// The path with the variable in place of its folder, as in "$XDG_CACHE_HOME/a"; unchanged when it
/// is in none of them.
[[nodiscard]] QString named(const QString& path);

/// The path for a name of that form.
[[nodiscard]] QString unnamed(const QString& name);

/// The contents of these folders by name, each with a text that changes when the entry does. Files
/// of the desktop's own processes are left out, and so are the times of folders, which change with
/// their contents.
[[nodiscard]] QMap<QString, QString> kept();

/// The files in these folders that hold the text, in one of several encodings.
[[nodiscard]] QStringList filesHolding(const QString& text);

/// Records the name of every file that is created in a folder or renamed into it.
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
