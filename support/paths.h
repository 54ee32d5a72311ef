// Operations on path texts. None of them touches the disk, and none of them throws: they fail to an empty
// text.
#pragma once

#include <string>

namespace kesp {

// folder and name with one separator between them where needed: none behind a separator or a drive ("C:"),
// none when either is empty, and one where both bring one along.
std::wstring JoinPath(const std::wstring& folder, const std::wstring& name) noexcept;

// Everything up to and including the last "\"; empty when there is none.
std::wstring FolderOfPath(const std::wstring& path) noexcept;

// The last component, extension included. A separator at the end is not a component: "C:\a\" gives "a". "/"
// separates as well as "\"; a drive is not a component.
std::wstring FileNameOfPath(const std::wstring& path) noexcept;

}  // namespace kesp
