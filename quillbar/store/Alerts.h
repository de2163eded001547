#pragma once

// Tells the user of an error and returns when the alert has been dismissed. Any thread.
void AlertError(const char* text);

// Warns the user, or tells something. They return at once. Any thread.
void AlertWarning(const char* text);
void AlertMsg(const char* text);
