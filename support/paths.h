// Operations on path texts. None of them touches the disk, and none of them throws.
#pragma once

#include <string>

namespace kesp {

// folder and name with one separator between them where needed.
std::wstring JoinPath(const std::wstring& folder, const std::wstring& name);

// Everything up to and including the last "\"; empty when there is none.
std::wstring FolderOfPath(const std::wstring& path);

// The last component, extension included. A separator at the end is not a component: "C:\a\" gives "a".
std::wstring FileNameOfPath(const std::wstring& path);

}  // namespace kesp
