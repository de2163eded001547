#include "host/x11/exchange/SelectionAnswer.h"

namespace host {

void AnswerRequest(const Connection& connection, const xcb_selection_request_event_t& request,
                   xcb_atom_t property) {
    xcb_selection_notify_event_t answer{};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.time = request.time;
    answer.requestor = request.requestor;
    answer.selection = request.selection;
    answer.target = request.target;
    answer.property = property;
    auto cookie =
        xcb_send_event_checked(connection, false, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                               reinterpret_cast<const char*>(&answer));
    xcb_discard_reply(connection, cookie.sequence);
    connection.Flush();
}

} // namespace host
