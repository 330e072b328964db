// How the DLL's entry points contain exceptions of every kind: one line in the log, the fallback as result.
#include "support/ExceptionGuard.h"

#include "harness/DebugOutput.h"

#include <afxwin.h>
#include <atlbase.h>
#include <json_spirit.h>

#include <gmock/gmock.h>

#include <comdef.h>

#include <stdexcept>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

// The log lines of running `body` under the guard.
template <class Body> std::vector<std::string> LinesOf(Body body)
{
    const orva::test::CDebugOutput output;
    const HRESULT result = RunGuarded<HRESULT>("CExample::Method", E_UNEXPECTED, [&]() -> HRESULT {
        body();
        return S_FALSE;
    });
    EXPECT_EQ(result, output.Lines().empty() ? S_FALSE : E_UNEXPECTED);
    return output.Lines();
}

bool g_isDeleted = false;

class CCountedException : public CException
{
public:
    ~CCountedException() override { g_isDeleted = true; }

    BOOL GetErrorMessage(LPWSTR text, UINT size, PUINT) const override
    {
        lstrcpynW(text, L"the server said no", static_cast<int>(size));
        return TRUE;
    }
};

} // namespace

TEST(ExceptionGuard, GivesTheResultAndWritesNothingWithoutAnException)
{
    EXPECT_THAT(LinesOf([] {}), IsEmpty());
}

TEST(ExceptionGuard, ContainsStandardExceptions)
{
    EXPECT_THAT(LinesOf([] { throw std::out_of_range("invalid vector<T> subscript"); }),
                ElementsAre("CExample::Method() Caught exception invalid vector<T> subscript"));
}

TEST(ExceptionGuard, ContainsTypeErrorsOfTheUpdateFile)
{
    EXPECT_THAT(LinesOf([] { json_spirit::wmValue(L"1").get_int(); }),
                ElementsAre("CExample::Method() Caught exception value type is 2 not 4"));
}

TEST(ExceptionGuard, ContainsAndDeletesMfcExceptions)
{
    g_isDeleted = false;
    EXPECT_THAT(LinesOf([] { throw static_cast<CException*>(new CCountedException); }),
                ElementsAre("CExample::Method() Caught exception the server said no"));
    EXPECT_TRUE(g_isDeleted);
}

TEST(ExceptionGuard, ContainsMfcExceptionsThrownAsTheirOwnType)
{
    g_isDeleted = false;
    EXPECT_THAT(LinesOf([] { throw new CCountedException; }),
                ElementsAre("CExample::Method() Caught exception the server said no"));
    EXPECT_TRUE(g_isDeleted);
}

TEST(ExceptionGuard, NamesAnMfcExceptionWithoutAText)
{
    EXPECT_THAT(LinesOf([] { throw new CException; }),
                ElementsAre("CExample::Method() Caught exception CException"));
}

TEST(ExceptionGuard, ContainsCarriersOfAnHresult)
{
    EXPECT_THAT(LinesOf([] { throw CAtlException(E_NOINTERFACE); }),
                ElementsAre("CExample::Method() Caught exception HRESULT 0x80004002"));
    EXPECT_THAT(LinesOf([] { throw _com_error(E_OUTOFMEMORY); }),
                ElementsAre("CExample::Method() Caught exception HRESULT 0x8007000E"));
}

TEST(ExceptionGuard, ContainsJsonSyntaxErrors)
{
    EXPECT_THAT(LinesOf([] {
                    json_spirit::wmValue value;
                    json_spirit::read_or_throw(std::wstring(L"{\n\"a\""), value);
                }),
                ElementsAre("CExample::Method() Caught exception no colon in pair (line 2, column 4)"));
}

TEST(ExceptionGuard, ContainsAnythingElse)
{
    EXPECT_THAT(LinesOf([] { throw 42; }),
                ElementsAre("CExample::Method() Caught exception unknown exception"));
    EXPECT_THAT(LinesOf([] { throw "text"; }),
                ElementsAre("CExample::Method() Caught exception unknown exception"));
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
