#include "forecast/ManyFiles.h"

#include "harness/Files.h"
#include "update/UpdateFiles.h"

#include <algorithm>
#include <random>
#include <string_view>

namespace orva::test
{
namespace
{

using namespace std::string_view_literals;

// What means something to the readers.
constexpr std::string_view kPieces[] = {
    "{"sv,
    "}"sv,
    "["sv,
    "]"sv,
    ","sv,
    ":"sv,
    "\""sv,
    "\\"sv,
    "\n"sv,
    "\t"sv,
    "\0"sv,
    "\xFF"sv,
    "\xC3"sv,
    "\xEF\xBB\xBF"sv,
    "null"sv,
    "true"sv,
    "1"sv,
    "-1"sv,
    "1.0"sv,
    "4294967297"sv,
    "2147483648"sv,
    "1e3"sv,
    "\"\""sv,
    "\"de\""sv,
    "\"es\""sv,
    "\"tr\""sv,
    "\"default\""sv,
    "\"x64\""sv,
    "\"x86\""sv,
    "{}"sv,
    "\\u0000"sv,
    "\\n"sv,
    "https://"sv,
    "/"sv,
    "con.exe"sv,
    "a?b"sv,
    "\"majorVersion\""sv,
    "\"downloadLink\""sv,
    "\"description\""sv,
    "\"signature\""sv,
};

constexpr char kUsual[] = R"({
    "x64": {
        "majorVersion": 1,
        "minorVersion": 3,
        "buildNumber": 0,
        "downloadLink": "http://www.orva.example/downloads/outlook/OrvaSetup-1.3.0.exe",
        "description": {
            "de": "Schneller.",
            "es": "Más rápido.",
            "tr": "Daha hızlı.",
            "default": "Faster."
        },
        "signature": "MEUCIQ=="
    }
})";

class CMutator
{
public:
    explicit CMutator(std::vector<std::string> known) : m_known(std::move(known)) {}

    std::string Next()
    {
        // Every other time a file that offers something, or most would be broken in the same way.
        std::string text = Below(2) == 0 ? std::string(kUsual) : m_known[Below(m_known.size())];
        for (std::size_t changes = 1 + Below(3); changes != 0; --changes)
        {
            Change(text);
        }
        return text;
    }

private:
    // Not std::uniform_int_distribution, whose numbers are not the same everywhere.
    std::size_t Below(std::size_t limit) { return m_random() % limit; }

    void Change(std::string& text)
    {
        const std::size_t at = Below(text.size() + 1);
        constexpr std::size_t kLongest = 24;
        const std::size_t length = 1 + Below(kLongest);
        switch (Below(6))
        {
        case 0:
            text.erase(at, length);
            break;
        case 1:
            text.insert(at, text.substr(at, length));
            break;
        case 2:
            text.insert(at, Piece());
            break;
        case 3:
            text.replace(at, Piece().size(), Piece());
            break;
        case 4:
            if (at < text.size())
            {
                text[at] = static_cast<char>(m_random());
            }
            break;
        default:
            ReplaceValue(text, at);
            break;
        }
    }

    // What stands between the next colon and the end of its value becomes another value.
    void ReplaceValue(std::string& text, std::size_t at)
    {
        const std::size_t colon = text.find(':', at);
        if (colon != std::string::npos)
        {
            const std::size_t end = std::min(text.find_first_of(",}", colon), text.size());
            text.replace(colon + 1, end - colon - 1, Piece());
        }
    }

    std::string_view Piece() { return kPieces[Below(std::size(kPieces))]; }

    std::vector<std::string> m_known;
    std::mt19937 m_random{20110120};
};

} // namespace

std::vector<std::string> KnownFiles()
{
    std::vector<std::string> files = {kUsual};
    for (const CFile& file : UpdateFiles())
    {
        files.push_back(file.text);
    }
    const COfferInPieces offer;
    for (const std::size_t place : offer.Places())
    {
        files.push_back(offer.Text().substr(0, place - 1));
        files.push_back(offer.Text().substr(0, place));
    }
    const std::wstring folder = BuiltFile(L"json-files");
    for (const std::wstring& name : ListFolder(folder))
    {
        files.push_back(ReadFileBytes(folder + L"\\" + name).value());
    }
    return files;
}

std::vector<std::string> MutatedFiles(std::size_t count)
{
    CMutator mutator(KnownFiles());
    std::vector<std::string> files;
    std::generate_n(std::back_inserter(files), count, [&] { return mutator.Next(); });
    return files;
}

} // namespace orva::test
