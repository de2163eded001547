#pragma once

#include "kits/app/MessageFilter.h"

// A quit request from outside the program is always obeyed.
class QBRemoteFilter : public BMessageFilter {
public:
    QBRemoteFilter();
    filter_result Filter(BMessage* message, BHandler** target) override;
};

// One from inside is obeyed only while the bar is the active window.
class QBLocalFilter : public BMessageFilter {
public:
    QBLocalFilter();
    filter_result Filter(BMessage* message, BHandler** target) override;
};
