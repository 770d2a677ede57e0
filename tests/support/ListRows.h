#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/PathText.h"
#include "desk/FileTable.h"

namespace tavlo::test {

/// A path below a folder that need not be there, with the system's separators.
inline std::string musicPath(const std::string& below = "") {
    std::string path = nativePathStyle() == PathStyle::Windows ? "C:/Music" : "/music";
    if (!below.empty()) path += "/" + below;
    for (char& c : path) {
        if (c == '/') c = separatorOf(nativePathStyle());
    }
    return path;
}

/// Rows made without files, and the store of their texts.
struct ListRows {
    std::shared_ptr<TextStore> store = std::make_shared<TextStore>();
    std::vector<FileRow> rows;

    FileRow& add(const std::string& below) {
        FileRow& row = rows.emplace_back();
        const std::string path = musicPath(below);
        set(row, RowText::Name, fileNameOf(path, nativePathStyle()));
        set(row, RowText::Folder, folderOf(path, nativePathStyle()));
        return row;
    }
    void set(FileRow& row, RowText which, std::string_view text) const {
        row.texts[static_cast<std::size_t>(which)] = store->add(text);
    }
    void appendTo(FileTable& table) const { table.append(rows, store); }
};

/// The names of the shown rows from top to bottom, parted by blanks.
inline std::string shownNames(const FileTable& table) {
    std::string names;
    for (const RowId id : table.shown()) {
        if (!names.empty()) names += ' ';
        names += table.row(id).text(RowText::Name);
    }
    return names;
}

}  // namespace tavlo::test
