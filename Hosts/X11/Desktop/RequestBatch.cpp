#include "Hosts/X11/Desktop/RequestBatch.h"

#include <algorithm>

#include <xcb/res.h>
#include <xcb/xcbext.h>

#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint32_t kAllPlanes = 0xFFFFFFFF;

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

void RequestBatch::children(xcb_window_t window, OnWindows handle)
{
    add(xcb_query_tree(m_connection, window), [handle = std::move(handle)](void* data) {
        auto* reply = static_cast<const xcb_query_tree_reply_t*>(data);
        handle(reply ? std::span{xcb_query_tree_children(reply), reply->children_len}
                     : std::span<const xcb_window_t>{});
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

void RequestBatch::pointerMask(xcb_window_t root, OnNumber handle)
{
    add(xcb_query_pointer(m_connection, root), [handle = std::move(handle)](void* data) {
        auto* reply = static_cast<const xcb_query_pointer_reply_t*>(data);
        handle(reply ? std::optional<std::uint32_t>{reply->mask} : std::nullopt);
    });
}

void RequestBatch::drawable(xcb_drawable_t drawable, OnDrawable handle)
{
    add(xcb_get_geometry(m_connection, drawable), [handle = std::move(handle)](void* data) {
        auto* reply = static_cast<const xcb_get_geometry_reply_t*>(data);
        handle(reply ? std::optional{DrawableSize{reply->width, reply->height, reply->depth}}
                     : std::nullopt);
    });
}

void RequestBatch::pixels(xcb_pixmap_t pixmap, const DrawableSize& size, OnData handle)
{
    auto format = size.depth == 1 ? XCB_IMAGE_FORMAT_XY_PIXMAP : XCB_IMAGE_FORMAT_Z_PIXMAP;
    auto cookie = xcb_get_image(m_connection, static_cast<std::uint8_t>(format), pixmap, 0, 0,
        static_cast<std::uint16_t>(size.width), static_cast<std::uint16_t>(size.height),
        kAllPlanes);
    add(cookie, [handle = std::move(handle)](void* data) {
        auto* reply = static_cast<const xcb_get_image_reply_t*>(data);
        if (!reply)
            return handle({});
        auto length = static_cast<std::size_t>(std::max(xcb_get_image_data_length(reply), 0));
        handle(std::as_bytes(std::span{xcb_get_image_data(reply), length}));
    });
}

void RequestBatch::finish()
{
    // An answer may lead to further questions; they go into the next batch.
    auto pending = std::exchange(m_pending, {});
    for (auto& question : pending) {
        xcb_generic_error_t* error = nullptr;
        auto reply = owned(xcb_wait_for_reply(m_connection, question.sequence, &error));
        owned(error).reset();
        question.handle(reply.get());
    }
}

}
