#pragma once

#include "kits/interface/controls/Alert.h"
#include "kits/interface/window/View.h"

// The background of an alert: the darker strip at the left with the picture of its type.
class AlertIcon : public BView {
public:
    AlertIcon(BRect frame, alert_type type);

    void Draw(BRect updateRect) override;

private:
    void Polygon(std::initializer_list<BPoint> points, rgb_color color);
    void Ellipse(BRect frame, rgb_color color);
    void Rect(BRect rect, rgb_color color);

    void DrawInfo();
    void DrawIdea();
    void DrawWarning();
    void DrawStop();

    const alert_type fType;
};
