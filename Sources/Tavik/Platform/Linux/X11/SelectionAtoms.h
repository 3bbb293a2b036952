#pragma once

#include "Platform/Linux/X11/Atoms.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace tavik {

/// The words of the selection protocol (ICCCM, section 2) and of window managers.
struct SelectionAtoms {
    explicit SelectionAtoms(xcb_connection_t* connection) : all(atomsOf(connection, names, true)) {}

    enum Name : std::size_t {
        clipboard,
        targets,
        multiple,
        timestamp,
        atomPair,
        incremental,
        utf8String,
        utf8Text,
        activeWindow,
        protocols,
        ping,
        /// A property of our own window.
        clock,
        /// A property of our windows.
        transfer,
        /// Those below are not data.
        saveTargets,
        deleteTarget,
        insertSelection,
        insertProperty,
        gtkTextBuffer,
        gtkTreeModelRow,
        gtkNotebookTab,
        gtkListBoxRow,
        gtkToolPaletteItem,
        count
    };

    xcb_atom_t operator[](std::size_t name) const { return all.at(name); }

    /// Whether it stands for what the owner says of a selection or does with it, or for something
    /// that the owner has in its memory or at the server.
    bool isNoData(xcb_atom_t target) const {
        const auto at = [this](Name name) { return all.begin() + name; };
        constexpr std::array<xcb_atom_t, 5> resources{XCB_ATOM_PIXMAP, XCB_ATOM_BITMAP,
                                                      XCB_ATOM_DRAWABLE, XCB_ATOM_COLORMAP,
                                                      XCB_ATOM_WINDOW};
        if (std::find(resources.begin(), resources.end(), target) != resources.end()) return true;
        return target == XCB_ATOM_NONE || target == all.at(targets) || target == all.at(multiple)
               || target == all.at(timestamp)
               || std::find(at(saveTargets), all.end(), target) != all.end();
    }

private:
    static constexpr std::array<std::string_view, count> names{
        "CLIPBOARD",
        "TARGETS",
        "MULTIPLE",
        "TIMESTAMP",
        "ATOM_PAIR",
        "INCR",
        "UTF8_STRING",
        "text/plain;charset=utf-8",
        "_NET_ACTIVE_WINDOW",
        "WM_PROTOCOLS",
        "_NET_WM_PING",
        "TAVIK_CLOCK",
        "TAVIK_TRANSFER",
        "SAVE_TARGETS",
        "DELETE",
        "INSERT_SELECTION",
        "INSERT_PROPERTY",
        "GTK_TEXT_BUFFER_CONTENTS",
        "GTK_TREE_MODEL_ROW",
        "GTK_NOTEBOOK_TAB",
        "GTK_LIST_BOX_ROW",
        "GTK_TOOL_PALETTE_ITEM",
    };

    std::array<xcb_atom_t, count> all;
};

} // namespace tavik
