// The HTTP client of the update check: one blocking exchange per call, through WinINet.
#pragma once

#include "support/HttpResponse.h"

#include <afxinet.h>

#include <cstdint>
#include <ctime>
#include <map>
#include <memory>
#include <string>

/// Nothing is kept between calls, except that the module's application name (and with it the user agent) is
/// empty from the first text or binary request on. All calls block their thread for the whole exchange.
class CHttpRequest
{
public:
    /// Ordered by key; keys and values are sent as they are, without percent-encoding.
    using Parameters = std::map<std::string, std::string>;

    /// Sends one request and reads at most 256,000 bytes of its response's body, which is inflated if it is
    /// gzip-coded. `verb` is a CHttpConnection::HTTP_VERB_ number; POST, GET and DELETE are sent.
    ///
    /// Never returns null. A URL that cannot be cracked and a WinINet failure are logged and give the status
    /// kStatusFailed. Throws CInternetException* if the session cannot be opened and std::out_of_range for a
    /// response without a readable Date header.
    static std::unique_ptr<CHttpResponse> PerformRequest(std::string url, Parameters params, int verb);

    /// Fetches a text: the UTF-8 body up to its first zero byte, without byte-order mark. Empty on every
    /// failure, for a status other than 200, 201 and 204 and for a UTF-16 response. Throws as PerformRequest
    /// does.
    ///
    /// A shorter form calls a longer one after its own entry in the log, so one call may write several
    /// entries.
    static std::wstring PerformTextRequest(std::string url, Parameters params, int verb);
    static std::wstring PerformTextRequest(std::string url, Parameters params, int verb, struct tm& date);
    static std::wstring PerformTextRequest(std::string url, Parameters params, int verb,
                                           std::uint32_t& status);
    static std::wstring PerformTextRequest(std::string url, Parameters params, int verb, struct tm& date,
                                           std::uint32_t& status);

    /// The text of a UTF-8 body up to its first zero byte, without byte-order mark. Empty without a body.
    static std::wstring DecodeUtf8(const CHttpResponse& response);

    /// Fetches a body as a new array of bytes in `out`, which the caller destroys. Returns E_FAIL when no
    /// body was read. Writes no log entries of its own. Throws as PerformRequest does.
    static HRESULT PerformBinaryRequest(std::string url, Parameters params, int verb, SAFEARRAY*& out);

    /// Stores one parameter, replacing one of the same key.
    static void SetParameter(Parameters& params, const std::string& key, const std::string& value);

    CHttpRequest() = delete;
};
