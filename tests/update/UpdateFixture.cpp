#include "update/UpdateFixture.h"

namespace orva::test
{

std::string UpdateInfo(const std::string& version, const std::string& more)
{
    const size_t first = version.find('.');
    const size_t second = version.find('.', first + 1);
    return "{\"x64\": {\"majorVersion\": " + version.substr(0, first) +
           ", \"minorVersion\": " + version.substr(first + 1, second - first - 1) +
           ", \"buildNumber\": " + version.substr(second + 1) + more + "}}";
}

std::string OfferOf(const std::string& link)
{
    return UpdateInfo("1.3.0", ", \"downloadLink\": \"" + link +
                                   "\", \"description\": {\"default\": \"Faster contacts.\"}");
}

void CUpdateTest::Publish(std::string body)
{
    Publish(CHttpReply(200, std::move(body)));
}

void CUpdateTest::Publish(const CHttpReply& reply)
{
    m_server.On(kUpdateInfoPath, reply);
}

} // namespace orva::test
