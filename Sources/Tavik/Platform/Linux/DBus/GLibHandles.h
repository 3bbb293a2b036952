#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>

namespace tavik {

/// Owners of GLib's objects. An empty handle stands for "none".

struct ObjectRelease {
    void operator()(gpointer object) const { g_object_unref(object); }
};

struct VariantRelease {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};

struct ErrorRelease {
    void operator()(GError* error) const { g_error_free(error); }
};

struct SourceRelease {
    void operator()(GSource* source) const {
        g_source_destroy(source);
        g_source_unref(source);
    }
};

struct MemoryRelease {
    void operator()(gpointer memory) const { g_free(memory); }
};

template<typename T>
using ObjectHandle = std::unique_ptr<T, ObjectRelease>;
using VariantHandle = std::unique_ptr<GVariant, VariantRelease>;
using ErrorHandle = std::unique_ptr<GError, ErrorRelease>;
using TextHandle = std::unique_ptr<char, MemoryRelease>;

/// An event source; its handler is not called any more once this is gone.
using SourceHandle = std::unique_ptr<GSource, SourceRelease>;

/// Owns a variant, whether it is floating or a reference of the caller's.
inline VariantHandle ownedVariant(GVariant* variant) {
    return VariantHandle(variant ? g_variant_take_ref(variant) : nullptr);
}

/// `text` as other programs accept it: what is not UTF-8 becomes U+FFFD, and it ends at a NUL.
inline TextHandle validText(const std::string& text) {
    return TextHandle(g_utf8_make_valid(text.c_str(), -1));
}

/// The text of a variant of a string type.
inline std::string textOf(GVariant* variant) {
    return g_variant_get_string(variant, nullptr);
}

} // namespace tavik
