#include "Holdings.h"

#include "Platform/Linux/X11/WindowClients.h"

#include <malloc.h>
#include <unistd.h>
#include <xcb/res.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tavik {
namespace {

std::int64_t entriesOf(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return std::distance(begin(entries), end(entries));
}

std::int64_t residentKilobytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:"))
            return std::stoll(line.substr(line.find_first_of("0123456789")));
    return 0;
}

std::int64_t heapKilobytes() {
    constexpr std::size_t kilobyte = 1024;
    const auto info = mallinfo2();
    return static_cast<std::int64_t>((info.uordblks + info.hblkhd) / kilobyte);
}

void addResources(xcb_connection_t* connection, std::uint32_t client, Holdings& holdings) {
    const auto request = xcb_res_query_client_resources(connection, client);
    const XCBReply<xcb_res_query_client_resources_reply_t> reply(
        xcb_res_query_client_resources_reply(connection, request, nullptr));
    if (!reply) return;
    auto types = xcb_res_query_client_resources_types_iterator(reply.get());
    for (; types.rem > 0; xcb_res_type_next(&types)) {
        holdings.resources += types.data->count;
        const XCBReply<xcb_get_atom_name_reply_t> name(xcb_get_atom_name_reply(
            connection, xcb_get_atom_name(connection, types.data->resource_type), nullptr));
        if (!name) continue;
        const std::string type(xcb_get_atom_name_name(name.get()),
                               static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get())));
        if (type == "WINDOW") holdings.windows += types.data->count;
    }
}

} // namespace

Holdings presentHoldings(xcb_connection_t* connection) {
    Holdings holdings{residentKilobytes(), heapKilobytes(), entriesOf("/proc/self/fd"),
                      entriesOf("/proc/self/task")};
    const XCBReply<xcb_res_query_clients_reply_t> clients(
        xcb_res_query_clients_reply(connection, xcb_res_query_clients(connection), nullptr));
    if (!clients) return holdings;
    auto each = xcb_res_query_clients_clients_iterator(clients.get());
    for (; each.rem > 0; xcb_res_client_next(&each))
        if (localProcessOf(connection, each.data->resource_base) == getpid())
            addResources(connection, each.data->resource_base, holdings);
    return holdings;
}

} // namespace tavik
