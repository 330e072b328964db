// What the tests of the update check share: a server that publishes, an Office language, a log, an owner
// window.
#pragma once

#include "fixture/ProductFixture.h"
#include "fixture/UpdateInfo.h"
#include "fixture/UserTexts.h"
#include "harness/HttpReply.h"
#include "harness/LoopbackServer.h"
#include "harness/ProxySetting.h"
#include "harness/UserScript.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orva::test
{

/// An entry for "x64" with this version and these further members (JSON text that starts with a comma).
std::string UpdateInfo(const std::string& version, const std::string& more);

/// A complete file that offers 1.3.0 with this download link.
std::string OfferOf(const std::string& link);

/// Publishes on a loopback server that acts as the proxy, in an English Office 2010.
class CUpdateTest : public testing::Test
{
protected:
    void Publish(std::string body);
    void Publish(const CHttpReply& reply);

    CLoopbackServer m_server;
    CProxySetting m_proxy{m_server.Port()};
    COfficeLanguage m_language{1033};
    COwnerWindow m_owner;
    CUserScript m_user;
};

} // namespace orva::test
