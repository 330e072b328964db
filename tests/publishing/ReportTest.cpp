// The whole report of two files, in plain words and for scripts.
#include "publishing/Report.h"

#include "fixture/ProductFixture.h"
#include "harness/Files.h"
#include "harness/TempFolder.h"
#include "publishing/FindingRows.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace orva::test
{
namespace
{

using nlohmann::json;

class ReportTest : public testing::Test
{
protected:
    publishing::CCheckResult Check(const std::string& bytes,
                                   const std::optional<PublishedVersion>& installed = {})
    {
        const std::wstring path = m_folder.File(L"UpdateInfo.txt");
        WriteFileBytes(path, bytes);
        publishing::CCheckResult result = publishing::Check({.source = path, .installed = installed});
        result.source = L"UpdateInfo.txt";
        return result;
    }

    // The entry of the user of this language.
    static json UserOf(const json& report, int language, const char* installed, const char* trigger)
    {
        for (const json& user : report["users"])
        {
            if (user["language"] == language && user["installed"] == installed && user["trigger"] == trigger)
            {
                return user;
            }
        }
        return {};
    }

    CTempFolder m_folder;
    COfficeLanguage m_language{1033};
};

TEST_F(ReportTest, TellsWhoIsOfferedWhichText)
{
    EXPECT_EQ(publishing::PlainReport(Check(kGoodFile)), R"(UpdateInfo.txt: version 1.3.0
Installer: not checked

From 1.2.0, when Outlook starts and on "Update":
  English, another Spanish, another German, a language without texts:
    is offered 1.3.0 with this text:
      | Faster.
  German:
    is offered 1.3.0 with this text:
      | Schneller.
  Spanish of Spain:
    is offered 1.3.0 with this text:
      | Más rápido.
  Turkish:
    is offered 1.3.0 with this text:
      | Daha hızlı.

no errors, no warnings
)");
}

TEST_F(ReportTest, TellsWhoSeesWhichMessagesFromWhichVersion)
{
    std::string file = With("Daha hızlı.", "");
    file.replace(file.find(kGoodLink), sizeof(kGoodLink) - 1, "http://h/nul");
    EXPECT_EQ(publishing::PlainReport(Check(file, PublishedVersion{1, 3, 0})),
              R"(UpdateInfo.txt: version 1.3.0
Installer: not checked

From 1.2.0, when Outlook starts:
  English:
    is offered 1.3.0 with this text:
      | Faster.
    after "Install" sees the message "File could not be created, error ID: 123", then the message "Update download canceled. Click on the "Update" button to try and download the update again."
  German:
    is offered 1.3.0 with this text:
      | Schneller.
    after "Install" sees the message "Die Datei konnte nicht erstellt werden. Fehlercode: 123", then the message "Der Download des Updates wurde abgebrochen. Klicken Sie auf die Schaltfläche "Aktualisieren", um den Download des Updates erneut zu versuchen."
  Spanish of Spain:
    is offered 1.3.0 with this text:
      | Más rápido.
    after "Install" sees the message "No se pudo crear el archivo. Código de error: 123", then the message "Se ha cancelado la descarga de la actualización. Haga clic en el botón "Actualizar" para intentar descargarla de nuevo."
  another Spanish:
    is offered 1.3.0 with this text:
      | Faster.
    after "Install" sees the message "No se pudo crear el archivo. Código de error: 123", then the message "Se ha cancelado la descarga de la actualización. Haga clic en el botón "Actualizar" para intentar descargarla de nuevo."
  Turkish:
    sees nothing
  another German, a language without texts:
    is offered 1.3.0 with this text:
      | Faster.
    after "Install" sees an empty message, then an empty message

From 1.2.0, on "Update":
  English:
    is offered 1.3.0 with this text:
      | Faster.
    after "Install" sees the message "File could not be created, error ID: 123", then the message "Update download canceled. Click on the "Update" button to try and download the update again."
  German:
    is offered 1.3.0 with this text:
      | Schneller.
    after "Install" sees the message "Die Datei konnte nicht erstellt werden. Fehlercode: 123", then the message "Der Download des Updates wurde abgebrochen. Klicken Sie auf die Schaltfläche "Aktualisieren", um den Download des Updates erneut zu versuchen."
  Spanish of Spain:
    is offered 1.3.0 with this text:
      | Más rápido.
    after "Install" sees the message "No se pudo crear el archivo. Código de error: 123", then the message "Se ha cancelado la descarga de la actualización. Haga clic en el botón "Actualizar" para intentar descargarla de nuevo."
  another Spanish:
    is offered 1.3.0 with this text:
      | Faster.
    after "Install" sees the message "No se pudo crear el archivo. Código de error: 123", then the message "Se ha cancelado la descarga de la actualización. Haga clic en el botón "Actualizar" para intentar descargarla de nuevo."
  Turkish:
    sees the message "Güncelleme bilgileri ayrıştırılamadı."
  another German, a language without texts:
    is offered 1.3.0 with this text:
      | Faster.
    after "Install" sees an empty message, then an empty message

From 1.3.0, when Outlook starts:
  English, German, Spanish of Spain, another Spanish, Turkish, another German, a language without texts:
    sees nothing

From 1.3.0, on "Update":
  English:
    sees the message "You already have the latest version of the ORVA Connector. "
  German:
    sees the message "Sie haben bereits die neueste Version des ORVA Connectors. "
  Spanish of Spain, another Spanish:
    sees the message "Ya tiene la última versión de ORVA Connector. "
  Turkish:
    sees the message "ORVA Connector'ın en son sürümü zaten yüklü. "
  another German, a language without texts:
    sees an empty message

Error: x64 publishes 1.3.0, which is not newer than the installed 1.3.0
Error: x64.downloadLink ends with what cannot be the name of a file: "nul"
Warning: x64.description.tr is empty: its readers are not offered the update, and do not read "default" instead
2 errors, 1 warning
)");
}

TEST_F(ReportTest, TextsOfSeveralLinesAreShownLineByLine)
{
    const std::string report = publishing::PlainReport(Check(With("Faster.", "one\\n\\ntwo\\r\\nthree")));
    EXPECT_NE(report.find("      | one\n      | \n      | two\n      | three\n  German:"), std::string::npos)
        << report;
}

TEST_F(ReportTest, ForScriptsItHasTheSameAsJson)
{
    const json report =
        json::parse(publishing::JsonReport(Check(With("Daha hızlı.", ""), PublishedVersion{1, 3, 0})));
    EXPECT_EQ(report["format"], 1);
    EXPECT_EQ(report["source"], "UpdateInfo.txt");
    EXPECT_EQ(report["version"], "1.3.0");
    EXPECT_EQ(report["server"], nullptr);
    EXPECT_EQ(report["installer"], nullptr);
    EXPECT_EQ(report["errors"], json::parse(R"([{"code": "not-newer", "path": "x64",
                              "text": "publishes 1.3.0, which is not newer than the installed 1.3.0"}])"));
    EXPECT_EQ(report["warnings"][0]["code"], "empty-text");
    EXPECT_EQ(report["users"].size(), 28u);
    EXPECT_EQ(UserOf(report, 1031, "1.2.0", "start"),
              json::parse(R"({"user": "German", "language": 1031, "installed": "1.2.0", "trigger": "start",
                              "messages": [], "offer": {"version": "1.3.0", "text": "Schneller."},
                              "afterInstall": [], "downloads": true})"));
    EXPECT_EQ(UserOf(report, 1055, "1.2.0", "request"),
              json::parse(R"({"user": "Turkish", "language": 1055, "installed": "1.2.0", "trigger": "request",
                              "messages": ["Güncelleme bilgileri ayrıştırılamadı."], "offer": null,
                              "afterInstall": [], "downloads": false})"));
}

TEST_F(ReportTest, ServerAndInstallerAreInItAsWell)
{
    publishing::CCheckResult result;
    result.server = {404, L"today", L"text/html", L"", L"http://h/new", 12};
    result.installer = {L"setup.exe", 1000, 32, L"1.3.0", false};
    const json report = json::parse(publishing::JsonReport(result));
    EXPECT_EQ(report["version"], nullptr);
    EXPECT_EQ(report["server"],
              json::parse(R"({"status": 404, "date": "today", "contentType": "text/html", "coding": null,
                              "redirectedTo": "http://h/new", "size": 12})"));
    EXPECT_EQ(
        report["installer"],
        json::parse(
            R"({"source": "setup.exe", "size": 1000, "bits": 32, "version": "1.3.0", "signed": false})"));
    EXPECT_EQ(publishing::PlainReport(result),
              ": no version that can be read\n"
              "Server: status 404; today; text/html; 12 bytes\n"
              "Installer: setup.exe; 1000 bytes; 32 bits; version 1.3.0; signature "
              "not valid\n\nno errors, no warnings\n");
}

} // namespace
} // namespace orva::test
