#include "PathText.h"

#include <algorithm>
#include <cstring>

#include "URaise.h"

namespace {

bool isSeparator(char c) { return c == '/' || c == '\\'; }

struct Path {
    CString dir;
    CString name;
};

// `part` of the path, or what stands for it when there is none.
CString partOr(const char* path, const char* def, CString Path::*part) {
    Path parsed;
    if (ParseFullPath(path, parsed.dir, parsed.name)) return parsed.*part;
    if (def == nullptr) URaise("SGetFileName()", "failed to parse filename", path);
    return def;
}

}  // namespace

bool ParseFullPath(const char* path, CString& dir, CString& name) {
    if (path == nullptr) return false;
    const CString whole(path);  // `path` may lie in one of the two that are stored
    const int last = std::max(whole.ReverseFind('/'), whole.ReverseFind('\\'));
    name = whole.Mid(last + 1);
    dir = last < 0 ? CString() : whole.Left(last) + "/";
    if (name == "." || name == "..") {
        dir = whole;
        name = "";
    }
    return true;
}

CString SGetFileName(const char* path, const char* def) { return partOr(path, def, &Path::name); }

CString SGetFilePath(const char* path, const char* def) { return partOr(path, def, &Path::dir); }

bool hasTralingSlash(const char* path) {
    return path != nullptr && *path != '\0' && isSeparator(path[std::strlen(path) - 1]);
}

CString stripTrailingSlash(const char* path) {
    const CString whole(path);
    return hasTralingSlash(path) ? whole.Left(whole.GetLength() - 1) : whole;
}

CString addTrailingSlash(const char* path) {
    const CString whole(path);
    return hasTralingSlash(path) ? whole : whole + "/";
}
