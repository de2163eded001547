#pragma once

// What the about box says: the product, the notice, two lines of thanks, who wrote it.
inline constexpr const char* kAboutInfo[] = {
    "Quillbar",
    "\u00a9 2026 the Quillbar developers",
    "Thanks to all who shaped its design",
    "Icons and design by the Quillbar developers",
    "Code by the Quillbar developers",
};

// The project's own site, and that of its source.
inline constexpr const char* kURLInfo[] = {
    "http://quillbar.example/",
    "http://quillbar.example/source",
};
