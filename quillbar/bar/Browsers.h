#pragma once

// The browsers that bookmarks can be launched in.
inline constexpr const char* kOperaSignature = "application/x-vnd.operasoftware-opera";
inline constexpr const char* kNetPositiveSignature = "application/x-vnd.Be-NPOS";
