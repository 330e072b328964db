// The texts of the four languages, read out of the built module.
#include "OrvaWebHost.h"
#include "harness/Text.h"
#include "res/ModuleResources.h"

#include <gtest/gtest.h>

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

// The placeholders of a format in their order, "%%" included.
std::vector<std::string> Placeholders(const std::string& format)
{
    static const std::regex placeholder("%[^a-zA-Z%]*[a-zA-Z%]");
    return {std::sregex_token_iterator(format.begin(), format.end(), placeholder),
            std::sregex_token_iterator()};
}
} // namespace

TEST(StringsTest, TheTablesAreStoredUnderTheirFourLanguagesOnly)
{
    for (const WORD block : {WORD{7}, WORD{8}, WORD{9}})
    {
        EXPECT_EQ(ResourceLanguages(RT_STRING, block), (std::vector<WORD>{10, 31, 1031, 1033})) << block;
    }
    EXPECT_TRUE(ResourceLanguages(RT_STRING, 6).empty());
    EXPECT_TRUE(ResourceLanguages(RT_STRING, 10).empty());
}

TEST(StringsTest, NoBlockIsNamedLikeAStringSoTheSecondSearchFindsNothing)
{
    for (UINT id = kFirstId; id <= kLastId; ++id)
    {
        EXPECT_TRUE(ResourceLanguages(RT_STRING, static_cast<WORD>(id)).empty()) << id;
    }
}

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
    // All texts but the first two paragraphs and the legal notice.
    EXPECT_EQ(kFixedEnglish.size(), kLastId - kFirstId + 1 - 3);
}

TEST(StringsTest, LinksAndProductNameAreTheSameInEveryLanguage)
{
    for (const WORD language : kLanguages)
    {
        for (const UINT id : {102u, 109u, 111u, 142u})
        {
            EXPECT_EQ(Text(language, id), kFixedEnglish.at(id)) << LanguageName(language);
        }
    }
}

TEST(StringsTest, EveryTranslationKeepsThePlaceholdersInTheirOrder)
{
    EXPECT_EQ(Placeholders(Text(kEnglish, 128)), (std::vector<std::string>{"%s", "%%", "%s"}));
    EXPECT_EQ(Placeholders(Text(kEnglish, 140)), (std::vector<std::string>{"%d", "%d", "%d", "%d"}));
    for (const WORD language : kLanguages)
    {
        for (UINT id = kFirstId; id <= kLastId; ++id)
        {
            EXPECT_EQ(Placeholders(Text(language, id)), Placeholders(Text(kEnglish, id)))
                << LanguageName(language) << " " << id << ": " << Text(language, id);
        }
    }
}

TEST(StringsTest, TheCanceledMessageHasOneLineBreakAndInnerQuotesInEveryLanguage)
{
    for (const WORD language : kLanguages)
    {
        const std::string text = Text(language, 132);
        const size_t lineBreak = text.find('\n');
        ASSERT_NE(lineBreak, std::string::npos) << text;
        EXPECT_EQ(text.find('\n', lineBreak + 1), std::string::npos) << text;
        EXPECT_EQ(text.find('\\'), std::string::npos) << text;
        // The text between the quotes is the button's label.
        EXPECT_NE(text.find('"' + Text(language, 114) + '"', lineBreak), std::string::npos) << text;
    }
}

TEST(StringsTest, OnlyTheLatestVersionMessageEndsInABlankAndDoesSoInEveryLanguage)
{
    for (const WORD language : kLanguages)
    {
        for (UINT id = kFirstId; id <= kLastId; ++id)
        {
            const std::string text = Text(language, id);
            ASSERT_FALSE(text.empty());
            EXPECT_EQ(text.back() == ' ', id == 137) << LanguageName(language) << " " << id;
            EXPECT_NE(text.front(), ' ') << LanguageName(language) << " " << id;
            EXPECT_EQ(text.find("  "), std::string::npos) << LanguageName(language) << " " << id;
        }
    }
}

TEST(StringsTest, OfTheBackstageTextsOnlyTheSpanishRequestIsNotFitForMarkup)
{
    std::vector<UINT> ids = {140, 141, 142};
    for (UINT id = 102; id <= 117; ++id)
    {
        if (id != 116)
        {
            ids.push_back(id);
        }
    }
    for (const WORD language : kLanguages)
    {
        for (const UINT id : ids)
        {
            const bool fit = Text(language, id).find_first_of("\"<>&") == std::string::npos;
            EXPECT_EQ(fit, !(language == kSpanish && id == 113)) << LanguageName(language) << " " << id;
        }
    }
    EXPECT_NE(Text(kSpanish, 113).find("\"Actualizar\""), std::string::npos);
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
          {140, "Version %d.%d.%d (%d-Bit)"}}},
        {kSpanish,
         {{104,
           "Mantiene sus contactos de la red a mano en Outlook, para que pueda comunicarse con las personas "
           "adecuadas sin salir de la bandeja de entrada."},
          {105,
           "Este complemento le informa sobre ORVA Connector y se encarga de que esté siempre actualizado: "
           "al "
           "iniciarse Outlook, busca una versión más reciente, que solo se instala con su consentimiento."},
          {116, "No se pudo analizar la información de actualización."},
          {124, "No se pudo crear el archivo. Código de error: %d"},
          {132, "Se ha cancelado la descarga de la actualización.\nHaga clic en el botón \"Actualizar\" para "
                "intentar descargarla de nuevo."},
          {133, "No se pudo analizar la URL: %s"},
          {134, "No se pudo crear el directorio temporal."},
          {140, "Version %d.%d.%d (%d-Bit)"}}},
        {kTurkish,
         {{113, "ORVA Connector eklentisinin en son sürümünü yüklediğinizden emin olmak için lütfen Güncelle "
                "düğmesine tıklayın."},
          {116, "Güncelleme bilgileri ayrıştırılamadı."},
          {124, "Dosya oluşturulamadı. Hata kodu: %d"},
          {125, "%s - %s"},
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

TEST(StringsTest, TheRequestNamesTheButtonAsItIsLabelled)
{
    for (const WORD language : {kGerman, kSpanish, kTurkish})
    {
        EXPECT_NE(Text(language, 113).find(Text(language, 114)), std::string::npos) << LanguageName(language);
    }
}

TEST(StringsTest, SpecialCharactersOfEachLanguageArriveAsTheyWereWritten)
{
    EXPECT_EQ(ModuleString(kEnglish, 117), L"\u00A9 2011 ORVA. All rights reserved.");
    EXPECT_EQ(ModuleString(kGerman, 139), L"Schlie\u00DFen");
    EXPECT_EQ(ModuleString(kGerman, 138), L"\u00DCber den ORVA Connector...");
    EXPECT_EQ(ModuleString(kSpanish, 106), L"M\u00E1s informaci\u00F3n");
    EXPECT_EQ(ModuleString(kTurkish, 101), L"\u0130ptal");
    EXPECT_EQ(ModuleString(kTurkish, 127), L"Aktar\u0131m h\u0131z\u0131:");
    for (const WORD language : kLanguages)
    {
        for (UINT id = kFirstId; id <= kLastId; ++id)
        {
            // Characters that appear when UTF-8 is read with another code page or cannot be decoded.
            EXPECT_EQ(ModuleString(language, id).find_first_of(L"\u00C3\u00C2\u00C4\u00C5\uFFFD"),
                      std::wstring::npos)
                << Text(language, id);
        }
    }
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
