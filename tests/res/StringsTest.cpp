// The texts of the four languages, read out of the built module.
#include "OrvaWebHost.h"
#include "harness/Text.h"
#include "res/ModuleResources.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>

using namespace orva::test;

namespace
{
constexpr UINT kFirstId = 101;
constexpr UINT kLastId = 142;

std::string Text(WORD language, UINT id)
{
    return Utf8(ModuleString(language, id));
}

const std::map<UINT, std::string> kFixedEnglish = {
    {101, "Cancel"},
    {102, "ORVA Connector"},
    {105,
     "This add-in tells you about the ORVA Connector and keeps it up to date: when Outlook starts, it looks "
     "for a newer version, which is installed only with your consent."},
    {106, "More information"},
    {107, "The following links provide you with information about use and troubleshooting:"},
    {108, "ORVA Connector information"},
    {109, "http://" ORVA_WEB_HOST "/outlook"},
    {110, "FAQs"},
    {111, "http://" ORVA_WEB_HOST "/outlook/faqs"},
    {112, "Version"},
    {113, "Please click on the update button to ensure that you installed the latest version of the ORVA "
          "Connector "
          "plugin."},
    {114, "Update"},
    {115, "Check for new version now"},
    {116, "Update information could not be parsed."},
    {117, "\u00A9 2011 ORVA. All rights reserved."},
    {118, "New update available"},
    {119, "Install"},
    {120, "Later"},
    {121, "Error when connecting to the update server."},
    {122, "Download started"},
    {123, "Download canceled"},
    {124, "File could not be created, error ID: %d"},
    {125, "%s of %s"},
    {126, "Time remaining:"},
    {127, "Transfer rate:"},
    {128, "Download: %s%% of %s"},
    {129, "%dkb of %dkb"},
    {130, "%ds (%s complete)"},
    {131, "%d kb/s"},
    {132, "Update download canceled.\nClick on the \"Update\" button to try and download the update again."},
    {133, "URL could not be parsed: %s"},
    {134, "Temporary directory could not be created."},
    {135, "Available version: %s"},
    {136, "Installed version: %s"},
    {137, "You already have the latest version of the ORVA Connector. "},
    {138, "About the ORVA Connector..."},
    {139, "Close"},
    {140, "Version %d.%d.%d (%d-bit)"},
    {141, "About this site"},
    {142, "http://" ORVA_WEB_HOST "/app/user?op=imprint"},
};

// Calls `check` for every text of every language, with the language and the id in failure messages.
template <typename Check> void ForEachText(Check check)
{
    for (const WORD language : kLanguages)
    {
        SCOPED_TRACE(LanguageName(language));
        for (UINT id = kFirstId; id <= kLastId; ++id)
        {
            SCOPED_TRACE(id);
            check(language, id, Text(language, id));
        }
    }
}

// The placeholders of a format in their order, "%%" included.
std::vector<std::string> Placeholders(const std::string& format)
{
    static const std::regex placeholder("%[^a-zA-Z%]*[a-zA-Z%]");
    return {std::sregex_token_iterator(format.begin(), format.end(), placeholder),
            std::sregex_token_iterator()};
}
} // namespace

TEST(StringsTest, EveryIdHasATextInEveryLanguageAndNoOtherIdHasOne)
{
    for (const WORD language : kLanguages)
    {
        for (UINT id = 96; id < 144; ++id)
        {
            EXPECT_EQ(!ModuleString(language, id).empty(), id >= kFirstId && id <= kLastId)
                << LanguageName(language) << " " << id;
        }
    }
}

TEST(StringsTest, TheEnglishTextsAreExact)
{
    for (const auto& [id, text] : kFixedEnglish)
    {
        EXPECT_EQ(Text(kEnglish, id), text) << id;
    }
    // All texts but the first two paragraphs.
    EXPECT_EQ(kFixedEnglish.size(), kLastId - kFirstId + 1 - 2);
}

TEST(StringsTest, EveryTranslationKeepsThePlaceholdersInTheirOrder)
{
    EXPECT_EQ(Placeholders(Text(kEnglish, 128)), (std::vector<std::string>{"%s", "%%", "%s"}));
    EXPECT_EQ(Placeholders(Text(kEnglish, 140)), (std::vector<std::string>{"%d", "%d", "%d", "%d"}));
    ForEachText([](WORD, UINT id, const std::string& text) {
        EXPECT_EQ(Placeholders(text), Placeholders(Text(kEnglish, id))) << text;
    });
}

TEST(StringsTest, OnlyTheCanceledMessageHasALineBreakAndOneInEveryLanguage)
{
    ForEachText([](WORD, UINT id, const std::string& text) {
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), id == 132 ? 1 : 0) << text;
        EXPECT_EQ(text.find('\\'), std::string::npos) << text;
    });
}

TEST(StringsTest, TheRequestAndTheCanceledMessageNameTheButtonAsItIsLabelled)
{
    for (const WORD language : kLanguages)
    {
        const std::string label = Text(language, 114);
        const std::string canceled = Text(language, 132);
        EXPECT_NE(canceled.find('"' + label + '"', canceled.find('\n')), std::string::npos) << canceled;
        // In English only the message does.
        if (language != kEnglish)
        {
            EXPECT_NE(Text(language, 113).find(label), std::string::npos) << Text(language, 113);
        }
    }
}

TEST(StringsTest, OnlyTheLatestVersionMessageEndsInABlankAndDoesSoInEveryLanguage)
{
    ForEachText([](WORD, UINT id, const std::string& text) {
        EXPECT_EQ(text.ends_with(' '), id == 137) << text;
        EXPECT_FALSE(text.starts_with(' ')) << text;
        EXPECT_EQ(text.find("  "), std::string::npos) << text;
    });
}

TEST(StringsTest, OfTheBackstageTextsOnlyTheSpanishRequestIsNotFitForMarkup)
{
    ForEachText([](WORD language, UINT id, const std::string& text) {
        const bool isInBackstage = (id >= 102 && id <= 117 && id != 116) || id >= 140;
        const bool isFit = text.find_first_of("\"<>&") == std::string::npos;
        EXPECT_TRUE(!isInBackstage || isFit == !(language == kSpanish && id == 113)) << text;
    });
}

TEST(StringsTest, TheFixedTranslationsAreExact)
{
    const std::map<WORD, std::map<UINT, std::string>> fixed = {
        {kGerman,
         {{113,
           "Klicken Sie bitte auf „Aktualisieren“, um sicherzustellen, dass die neueste Version des ORVA "
           "Connector-Plug-ins installiert ist."},
          {116, "Die Updateinformationen konnten nicht ausgewertet werden."},
          {118, "Neues Update verfügbar"},
          {119, "Installieren"},
          {120, "Später"},
          {121, "Fehler beim Herstellen der Verbindung mit dem Updateserver."},
          {124, "Die Datei konnte nicht erstellt werden. Fehlercode: %d"},
          {138, "Über den ORVA Connector..."},
          {139, "Schließen"},
          {140, "Version %d.%d.%d (%d-Bit)"}}},
        {kSpanish,
         {{104,
           "Mantiene sus contactos de la red a mano en Outlook, para que pueda comunicarse con las personas "
           "adecuadas sin salir de la bandeja de entrada."},
          {105,
           "Este complemento le informa sobre ORVA Connector y se encarga de que esté siempre actualizado: "
           "al "
           "iniciarse Outlook, busca una versión más reciente, que solo se instala con su consentimiento."},
          {106, "Más información"},
          {116, "No se pudo analizar la información de actualización."},
          {124, "No se pudo crear el archivo. Código de error: %d"},
          {132, "Se ha cancelado la descarga de la actualización.\nHaga clic en el botón \"Actualizar\" para "
                "intentar descargarla de nuevo."},
          {133, "No se pudo analizar la URL: %s"},
          {134, "No se pudo crear el directorio temporal."},
          {140, "Version %d.%d.%d (%d-Bit)"}}},
        {kTurkish,
         {{101, "İptal"},
          {113, "ORVA Connector eklentisinin en son sürümünü yüklediğinizden emin olmak için lütfen Güncelle "
                "düğmesine tıklayın."},
          {116, "Güncelleme bilgileri ayrıştırılamadı."},
          {124, "Dosya oluşturulamadı. Hata kodu: %d"},
          {125, "%s - %s"},
          {127, "Aktarım hızı:"},
          {129, "%dkb - %dkb"},
          {133, "URL ayrıştırılamadı: %s"},
          {137, "ORVA Connector'ın en son sürümü zaten yüklü. "},
          {138, "ORVA Connector Hakkında..."}}},
    };
    for (const auto& [language, texts] : fixed)
    {
        for (const auto& [id, text] : texts)
        {
            EXPECT_EQ(Text(language, id), text) << LanguageName(language) << " " << id;
        }
    }
}

TEST(StringsTest, NoTextHasACharacterOfABrokenEncoding)
{
    ForEachText([](WORD language, UINT id, const std::string& text) {
        // These appear when UTF-8 is read with another code page or cannot be decoded.
        EXPECT_EQ(ModuleString(language, id).find_first_of(L"\u00C3\u00C2\u00C4\u00C5\uFFFD"),
                  std::wstring::npos)
            << text;
    });
}

TEST(StringsTest, TheTranslationsAreTranslated)
{
    // Texts that are the same as in English: product name, links and shared words.
    const std::map<WORD, std::vector<UINT>> shared = {
        {kGerman, {102, 109, 111, 112, 131, 142}},
        {kSpanish, {102, 109, 111, 131, 142}},
        {kTurkish, {102, 109, 111, 142}},
    };
    for (const auto& [language, ids] : shared)
    {
        std::vector<UINT> same;
        for (UINT id = kFirstId; id <= kLastId; ++id)
        {
            if (ModuleString(language, id) == ModuleString(kEnglish, id))
            {
                same.push_back(id);
            }
        }
        EXPECT_EQ(same, ids) << LanguageName(language);
    }
}
