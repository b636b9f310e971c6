#include "Hosts/X11/Desktop/RequestBatch.h"

#include <cstdlib>

#include <xcb/res.h>
#include <xcb/xcbext.h>

namespace quorvel::xdg::x11 {

namespace {

std::optional<std::uint32_t> processOf(const xcb_res_query_client_ids_reply_t* reply)
{
    auto ids = xcb_res_query_client_ids_ids_iterator(reply);
    for (; ids.rem > 0; xcb_res_client_id_value_next(&ids)) {
        bool isProcess = (ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0;
        if (isProcess && xcb_res_client_id_value_value_length(ids.data) > 0)
            return *xcb_res_client_id_value_value(ids.data);
    }
    return std::nullopt;
}

RawProperty rawOf(const xcb_get_property_reply_t* reply)
{
    if (!reply)
        return {};
    auto length = xcb_get_property_value_length(reply);
    auto* data = static_cast<const std::byte*>(xcb_get_property_value(reply));
    return {reply->type, reply->format, {data, static_cast<std::size_t>(length > 0 ? length : 0)}};
}

}

RequestBatch::~RequestBatch()
{
    for (auto& pending : m_pending)
        xcb_discard_reply(m_connection, pending.sequence);
}

void RequestBatch::property(
    xcb_window_t window, xcb_atom_t atom, std::uint32_t maximumWords, OnProperty handle)
{
    auto cookie = xcb_get_property(m_connection, 0, window, atom, XCB_ATOM_ANY, 0, maximumWords);
    add(cookie, [handle = std::move(handle)](void* reply) {
        handle(rawOf(static_cast<const xcb_get_property_reply_t*>(reply)));
    });
}

void RequestBatch::place(xcb_window_t window, xcb_window_t root, OnPlace handle)
{
    auto cookie = xcb_translate_coordinates(m_connection, window, root, 0, 0);
    add(cookie, [handle = std::move(handle)](void* data) {
        auto* reply = static_cast<const xcb_translate_coordinates_reply_t*>(data);
        handle(reply ? std::optional{WindowPlace{reply->dst_x, reply->dst_y}} : std::nullopt);
    });
}

void RequestBatch::size(xcb_window_t window, OnSize handle)
{
    add(xcb_get_geometry(m_connection, window), [handle = std::move(handle)](void* data) {
        auto* reply = static_cast<const xcb_get_geometry_reply_t*>(data);
        handle(reply ? std::optional{Size{
                   static_cast<double>(reply->width), static_cast<double>(reply->height)}}
                     : std::nullopt);
    });
}

void RequestBatch::parent(xcb_window_t window, OnWindow handle)
{
    add(xcb_query_tree(m_connection, window), [handle = std::move(handle)](void* data) {
        auto* reply = static_cast<const xcb_query_tree_reply_t*>(data);
        handle(reply ? std::optional{reply->parent} : std::nullopt);
    });
}

void RequestBatch::clientProcess(xcb_window_t window, OnNumber handle)
{
    xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    add(xcb_res_query_client_ids(m_connection, 1, &spec), [handle = std::move(handle)](void* data) {
        auto* reply = static_cast<const xcb_res_query_client_ids_reply_t*>(data);
        handle(reply ? processOf(reply) : std::nullopt);
    });
}

void RequestBatch::eventMask(xcb_window_t window, OnNumber handle)
{
    add(xcb_get_window_attributes(m_connection, window), [handle = std::move(handle)](void* data) {
        auto* reply = static_cast<const xcb_get_window_attributes_reply_t*>(data);
        handle(reply ? std::optional{reply->your_event_mask} : std::nullopt);
    });
}

void RequestBatch::selectionOwner(xcb_atom_t selection, OnWindow handle)
{
    add(xcb_get_selection_owner(m_connection, selection), [handle = std::move(handle)](void* data) {
        auto* reply = static_cast<const xcb_get_selection_owner_reply_t*>(data);
        handle(reply && reply->owner ? std::optional{reply->owner} : std::nullopt);
    });
}

void RequestBatch::pointerMask(xcb_window_t root, OnNumber handle)
{
    add(xcb_query_pointer(m_connection, root), [handle = std::move(handle)](void* data) {
        auto* reply = static_cast<const xcb_query_pointer_reply_t*>(data);
        handle(reply ? std::optional<std::uint32_t>{reply->mask} : std::nullopt);
    });
}

void RequestBatch::finish()
{
    // An answer may lead to further questions; they go into the next batch.
    auto pending = std::exchange(m_pending, {});
    for (auto& question : pending) {
        xcb_generic_error_t* error = nullptr;
        void* reply = xcb_wait_for_reply(m_connection, question.sequence, &error);
        std::free(error);
        question.handle(reply);
        std::free(reply);
    }
}

}
