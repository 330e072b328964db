// How the DLL's entry points contain exceptions of every kind: one line in the log, the fallback as result.
#include "support/ExceptionGuard.h"

#include "harness/DebugOutput.h"

#include <afxwin.h>
#include <atlbase.h>
#include <json_spirit.h>

#include <gmock/gmock.h>

#include <comdef.h>

#include <functional>
#include <stdexcept>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

// The log lines of running `body` under the guard.
std::vector<std::string> LinesOf(const std::function<void()>& body)
{
    const orva::test::CDebugOutput output;
    const HRESULT result = RunGuarded<HRESULT>("CExample::Method", E_UNEXPECTED, [&]() -> HRESULT {
        body();
        return S_FALSE;
    });
    EXPECT_EQ(result, output.Lines().empty() ? S_FALSE : E_UNEXPECTED);
    return output.Lines();
}

int g_deleted = 0;

class CCountedException : public CException
{
public:
    ~CCountedException() override { ++g_deleted; }

    BOOL GetErrorMessage(LPWSTR text, UINT size, PUINT) const override
    {
        lstrcpynW(text, L"the server said no", static_cast<int>(size));
        return TRUE;
    }
};

void ReadBrokenJson()
{
    json_spirit::wmValue value;
    json_spirit::read_or_throw(std::wstring(L"{\n\"a\""), value);
}

} // namespace

TEST(ExceptionGuard, GivesTheResultAndWritesNothingWithoutAnException)
{
    EXPECT_THAT(LinesOf([] {}), IsEmpty());
}

TEST(ExceptionGuard, NamesEveryKindOfExceptionInOneLine)
{
    const std::pair<std::function<void()>, const char*> exceptions[] = {
        {[] { throw std::out_of_range("invalid vector<T> subscript"); }, "invalid vector<T> subscript"},
        {[] { json_spirit::wmValue(L"1").get_int(); }, "value type is 2 not 4"},
        {ReadBrokenJson, "no colon in pair (line 2, column 4)"},
        {[] { throw new CException; }, "CException"},
        {[] { throw CAtlException(E_NOINTERFACE); }, "HRESULT 0x80004002"},
        {[] { throw _com_error(E_OUTOFMEMORY); }, "HRESULT 0x8007000E"},
        {[] { throw 42; }, "unknown exception"},
        {[] { throw "text"; }, "unknown exception"},
    };
    for (const auto& [body, text] : exceptions)
    {
        EXPECT_THAT(LinesOf(body), ElementsAre(std::string("CExample::Method() Caught exception ") + text));
    }
}

TEST(ExceptionGuard, DeletesMfcExceptionsThrownAsTheirOwnTypeOrTheirBase)
{
    g_deleted = 0;
    EXPECT_THAT(LinesOf([] { throw new CCountedException; }),
                ElementsAre("CExample::Method() Caught exception the server said no"));
    EXPECT_EQ(g_deleted, 1);
    EXPECT_THAT(LinesOf([] { throw static_cast<CException*>(new CCountedException); }),
                ElementsAre("CExample::Method() Caught exception the server said no"));
    EXPECT_EQ(g_deleted, 2);
}

TEST(ExceptionGuard, GuardsWorkWithoutAResult)
{
    const orva::test::CDebugOutput output;
    bool hasRun = false;
    RunGuarded("CExample::Thread", [&] { hasRun = true; });
    EXPECT_TRUE(hasRun);
    EXPECT_THAT(output.Lines(), IsEmpty());

    RunGuarded("CExample::Thread", [] { throw std::runtime_error("x"); });
    EXPECT_THAT(output.Lines(), ElementsAre("CExample::Thread() Caught exception x"));
}
