// Small text helpers shared by the portable layers.
#pragma once
#include <cstddef>
#include <string>

// Copies at most size - 1 bytes of `from` and always terminates `to`.
void CopyText(char* to, size_t size, const char* from);
// ASCII-only case-insensitive comparison of at most n bytes, as _strnicmp in
// the C locale: stops at the first difference or at a NUL present in both.
int CompareNoCase(const char* a, const char* b, size_t n);
// The program's texts are Windows-1252; this converts one to UTF-8.
std::string Cp1252ToUtf8(const std::string& text);
// The other way: UTF-8 into `out` as Windows-1252. A character Windows-1252
// cannot hold, and a malformed sequence, becomes '?' and makes it false.
bool Utf8ToCp1252(const std::string& utf8, std::string* out);

// The part of a path after its last '\\', '/' or ':' (name and extension).
const char* FileNamePart(const char* path);
// `folder` followed by `name`, with the platform's separator added when the
// folder does not already end in one (an empty folder gets it too).
std::string JoinPath(const std::string& folder, const std::string& name);
// The folder of `path` with its trailing backslash ("C:\\Cal\\" for
// "C:\\Cal\\2027.CLN", "C:\\" for "C:x.CLN"); empty for a bare name.
std::string FolderOfFile(const std::string& path);
// Where the file dialogs start: the folder last used, or the user's
// documents while that is still empty or the program's own folder (which a
// standard user cannot write to). Folders compare without case.
std::string DialogStartFolder(const std::string& openPath, const std::string& programFolder,
                              const std::string& documents);
