#include "Explanation/HTTPSession.h"

#include "Base/Fatal.h"
#include "Text/URL.h"
#include "Text/Unicode.h"

#include <arpa/inet.h>
#include <curl/curl.h>

#include <algorithm>
#include <memory>
#include <new>

namespace tavik {
namespace {

using Handle = std::unique_ptr<CURL, void (*)(CURL*)>;
using Multi = std::unique_ptr<CURLM, CURLMcode (*)(CURLM*)>;
using Kind = TransportError::Kind;

void initialiseOnce() {
    static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (result != CURLE_OK) fatal("libcurl does not start");
}

/// A list of texts as libcurl takes it.
class TextList {
public:
    void add(const std::string& text) {
        curl_slist* const longer = curl_slist_append(list.get(), text.c_str());
        if (longer == nullptr) throw std::bad_alloc();
        static_cast<void>(list.release());
        list.reset(longer);
    }

    curl_slist* get() const { return list.get(); }

private:
    std::unique_ptr<curl_slist, void (*)(curl_slist*)> list{nullptr, curl_slist_free_all};
};

/// The answer as it grows.
struct Incoming {
    HTTPResponse response;
    std::size_t maxBodySize = 0;
};

/// libcurl takes a smaller count than it gave as an order to stop.
std::size_t takeBody(char* data, std::size_t, std::size_t size, void* target) {
    auto& [response, maxBodySize] = *static_cast<Incoming*>(target);
    const std::size_t room = maxBodySize - response.body.size();
    response.body.append(data, std::min(size, room));
    response.isCutOff = size > room;
    return response.isCutOff ? 0 : size;
}

std::string description(Kind kind, const std::string& detail) {
    switch (kind) {
    case Kind::cannotResolve:
        return "连不上网络：找不到服务器的地址，请检查网络和 API 地址";
    case Kind::cannotConnect:
        return "连不上服务器，请检查网络、API 地址，或者本机的服务是否已启动";
    case Kind::timedOut:
        return "请求超时，请稍后再试";
    case Kind::certificate:
        return "不能与服务器建立可信的安全连接（证书不可信，或者服务器不支持 HTTPS），没有发送"
               "请求。请检查网络、系统时间和 API 地址";
    case Kind::interrupted:
        return "连接中断，没有收到完整的回答，请再试一次";
    case Kind::cancelled:
        return "已取消";
    case Kind::other:
        break;
    }
    return "请求没有成功（" + detail + "）";
}

Kind kindOf(CURLcode result) {
    switch (result) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return Kind::cannotResolve;
    case CURLE_COULDNT_CONNECT:
        return Kind::cannotConnect;
    case CURLE_OPERATION_TIMEDOUT:
        return Kind::timedOut;
    case CURLE_PEER_FAILED_VERIFICATION:
    // Also of a false signature in the name of a trusted authority.
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
        return Kind::certificate;
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
        return Kind::interrupted;
    default:
        return Kind::other;
    }
}

/// Whether what came back was no HTTP at all.
bool isForeignAnswer(CURLcode result) {
    return result == CURLE_UNSUPPORTED_PROTOCOL || result == CURLE_WEIRD_SERVER_REPLY;
}

/// A proxy, which the environment may name, cannot reach a server on this machine.
bool isThisMachine(const std::string& address) {
    const auto url = URL::parse(address);
    if (!url) return false;
    std::string host = lowercased(url->host);
    if (host.ends_with('.')) host.pop_back();
    in_addr numbers{};
    const bool isNumeric = inet_pton(AF_INET, host.c_str(), &numbers) == 1;
    return host == "localhost" || host == "::1" || (isNumeric && host.starts_with("127."));
}

/// Runs one transfer until it ends; its result. Throws when `stop` is requested.
CURLcode perform(CURL* transfer, const std::stop_token& stop) {
    constexpr int longestWait = 1000;
    const Multi multi(curl_multi_init(), curl_multi_cleanup);
    if (!multi) throw std::bad_alloc();
    if (const CURLMcode code = curl_multi_add_handle(multi.get(), transfer); code != CURLM_OK)
        throw TransportError(Kind::other, curl_multi_strerror(code));
    const auto remove = [&](CURL* handle) { curl_multi_remove_handle(multi.get(), handle); };
    const std::unique_ptr<CURL, decltype(remove)> added(transfer, remove);
    const std::stop_callback wakeUp(stop, [&] { curl_multi_wakeup(multi.get()); });
    for (;;) {
        if (stop.stop_requested()) throw TransportError(Kind::cancelled);
        int running = 0;
        int waiting = 0;
        CURLMcode code = curl_multi_perform(multi.get(), &running);
        if (const CURLMsg* const message = curl_multi_info_read(multi.get(), &waiting))
            return message->data.result;
        if (code == CURLM_OK) code = curl_multi_poll(multi.get(), nullptr, 0, longestWait, nullptr);
        if (code != CURLM_OK) throw TransportError(Kind::other, curl_multi_strerror(code));
    }
}

} // namespace

TransportError::TransportError(Kind kind, const std::string& detail)
    : std::runtime_error(description(kind, detail)), kind(kind) {}

HTTPSession::HTTPSession() : HTTPSession(Options{}) {}

HTTPSession::HTTPSession(Options options) : options(std::move(options)) {
    initialiseOnce();
}

HTTPResponse HTTPSession::send(const HTTPRequest& request, const std::stop_token& stop) const {
    const Handle handle(curl_easy_init(), curl_easy_cleanup);
    if (!handle) throw std::bad_alloc();
    const auto set = [&](CURLoption option, auto value) {
        if (curl_easy_setopt(handle.get(), option, value) != CURLE_OK)
            throw TransportError(Kind::other, "libcurl 不支持所需的设置");
    };

    TextList headers;
    for (const auto& [name, value] : request.headers)
        headers.add(std::string(name).append(": ").append(value));
    // libcurl would wait for the server's leave before it sends a long body.
    headers.add("Expect:");
    TextList connectTo;
    for (const std::string& address : options.connectTo)
        connectTo.add(address);
    Incoming incoming{{}, options.maxBodySize};

    set(CURLOPT_URL, request.url.c_str());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_CUSTOMREQUEST, request.method.c_str());
    set(CURLOPT_HTTPHEADER, headers.get());
    set(CURLOPT_CONNECT_TO, connectTo.get());
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
    set(CURLOPT_POSTFIELDS, request.body.c_str());
    set(CURLOPT_TIMEOUT_MS, request.timeout.count());
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_ACCEPT_ENCODING, "");
    set(CURLOPT_NOSIGNAL, 1L);
    // A cancelled transfer does not wait for the thread that resolves its name.
    set(CURLOPT_QUICK_EXIT, 1L);
    set(CURLOPT_WRITEFUNCTION, takeBody);
    set(CURLOPT_WRITEDATA, &incoming);
    if (!options.connectTo.empty() || isThisMachine(request.url)) set(CURLOPT_PROXY, "");
    if (!options.certificateAuthority.empty())
        set(CURLOPT_CAINFO, options.certificateAuthority.c_str());

    const CURLcode result = perform(handle.get(), stop);
    if (isForeignAnswer(result)) return {};
    if (result != CURLE_OK && !incoming.response.isCutOff)
        throw TransportError(kindOf(result), curl_easy_strerror(result));
    long status = 0;
    curl_easy_getinfo(handle.get(), CURLINFO_RESPONSE_CODE, &status);
    incoming.response.status = static_cast<int>(status);
    return std::move(incoming.response);
}

} // namespace tavik
