#pragma once

// Writes a diagnostic trace to standard output: the signature of the function that calls, to be
// given as __PRETTY_FUNCTION__, and below it the text. A text of more than a few lines is cut. It
// stays in the stream's buffer unless that is a terminal. Any thread.
[[gnu::format(printf, 2, 3)]] void Trace(const char* signature, const char* format, ...);
