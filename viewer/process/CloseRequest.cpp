#include "CloseRequest.h"

#include <QtGui/QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace {

xcb_atom_t atom(xcb_connection_t* connection, std::string_view name)
{
    const xcb_intern_atom_cookie_t cookie = xcb_intern_atom(connection, 0, std::uint16_t(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

} // namespace

bool isCloseRequest(const QByteArray& eventType, const void* event)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* message = static_cast<const xcb_client_message_event_t*>(event);
    constexpr int sentFlag = 0x80;
    if ((message->response_type & ~sentFlag) != XCB_CLIENT_MESSAGE || message->format != 32)
        return false;
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11)
        return false;
    static const xcb_atom_t protocols = atom(x11->connection(), "WM_PROTOCOLS");
    static const xcb_atom_t deleteWindow = atom(x11->connection(), "WM_DELETE_WINDOW");
    return message->type == protocols && message->data.data32[0] == deleteWindow;
}
