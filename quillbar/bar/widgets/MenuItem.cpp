#include "quillbar/bar/widgets/MenuItem.h"

status_t QBMenuItem::Invoke(BMessage*) {
    return BMenuItem::Invoke();
}
