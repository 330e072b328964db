// A picture that is missing from the DLL, requested many times: each request leaves a start of GDI+ on
// purpose.
#include "addin/AddInFixture.h"
#include "harness/GdiPlusCounter.h"
#include "harness/Report.h"
#include "long_run/ProcessFigures.h"

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;

class MissingPictureTest : public CAddInTest
{
protected:
    void AskForPictures(int count)
    {
        const auto callback = Query<IRibbonCallback>(__uuidof(IRibbonCallback));
        for (int i = 0; i < count; ++i)
        {
            ComPtr<IPictureDisp> picture;
            ASSERT_EQ(callback->GetImageLogo(m_control.Get(), &picture), S_OK);
            ASSERT_EQ(picture.Get(), nullptr);
        }
    }

    ComPtr<CFakeObject> m_control = new CFakeObject(m_record, "control", {});

private:
    CCallRecord m_record;
};

TEST_F(MissingPictureTest, LeavesOneStartOfGdiPlusEachTimeAndNothingElse)
{
    // The name of the pictures' resource type, after its length.
    const CAddInCopy copy(std::string("\x03\0P\0N\0G\0", 8), std::string("\x03\0X\0N\0G\0", 8));
    LoadInstead(copy.Path());
    ASSERT_EQ(Connect(kOutlook2010), S_OK);
    AskForPictures(3);

    const int count = Repetitions(20, 1000);
    CProcessFigures before;
    CProcessFigures after;
    int kept = 0;
    {
        const CGdiPlusCounter counter(GetModuleHandleW(kAddInModule));
        before = CProcessFigures::Take();
        AskForPictures(count);
        after = CProcessFigures::Take();
        kept = counter.starts - counter.ends;
    }
    EXPECT_EQ(kept, count);
    const CProcessFigures growth = after - before;
    EXPECT_LE(growth.handles, kSlack);
    EXPECT_LE(growth.threads, kSlack);
    EXPECT_EQ(growth.userObjects, 0);
    EXPECT_EQ(growth.gdiObjects, 0);
    AddReportRow("long-run",
                 {"08 a picture that is missing from the DLL", std::to_string(count),
                  FromTo(before.handles, after.handles), FromTo(before.gdiObjects, after.gdiObjects),
                  FromTo(before.userObjects, after.userObjects), FromTo(before.privateKib, after.privateKib),
                  FromTo(before.heapBytes / 1024, after.heapBytes / 1024),
                  FromTo(before.threads, after.threads),
                  std::to_string(kept) + " starts of GDI+ without an end, kept on purpose"});
    // The copy cannot be deleted while it is loaded.
    ReleaseAll();
}

} // namespace
} // namespace orva::test
