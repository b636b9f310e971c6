#pragma once

#include <memory>

#include <gio/gio.h>

namespace quorvel::xdg {

/// Frees a C library's object with the library's own call.
template <auto Free> struct FreeWith {
    template <typename Object> void operator()(Object* object) const { Free(object); }
};

inline void destroySource(GSource* source)
{
    g_source_destroy(source);
    g_source_unref(source);
}

inline void cancelAndUnref(GCancellable* cancellable)
{
    g_cancellable_cancel(cancellable);
    g_object_unref(cancellable);
}

using GText = std::unique_ptr<char, FreeWith<g_free>>;
/// Ends with a null pointer.
using GTexts = std::unique_ptr<char*, FreeWith<g_strfreev>>;
using GErrorHandle = std::unique_ptr<GError, FreeWith<g_error_free>>;
using GVariantHandle = std::unique_ptr<GVariant, FreeWith<g_variant_unref>>;
template <typename Object> using GObjectHandle = std::unique_ptr<Object, FreeWith<g_object_unref>>;
/// Detached from its loop when dropped.
template <typename Source> using GSourceHandle = std::unique_ptr<Source, FreeWith<destroySource>>;
/// Cancels what was begun with it when dropped: its callbacks then find G_IO_ERROR_CANCELLED.
using GCancellation = std::unique_ptr<GCancellable, FreeWith<cancelAndUnref>>;

}
