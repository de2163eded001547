#pragma once

// A place on the screen, in a window or in a view, in logical pixels. Right and down grow.
class BPoint {
public:
    BPoint() = default;
    BPoint(float x_, float y_)
        : x(x_)
        , y(y_) {}

    BPoint operator+(const BPoint& other) const { return {x + other.x, y + other.y}; }
    BPoint operator-(const BPoint& other) const { return {x - other.x, y - other.y}; }
    BPoint& operator+=(const BPoint& other) { return *this = *this + other; }
    BPoint& operator-=(const BPoint& other) { return *this = *this - other; }
    bool operator==(const BPoint&) const = default;

    float x = 0;
    float y = 0;
};

inline const BPoint B_ORIGIN{0, 0};
