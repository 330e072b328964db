#include "ui/StalledDownload.h"

#include "harness/FaultyPorts.h"
#include "harness/Files.h"
#include "harness/HttpReply.h"
#include "harness/Waiting.h"
#include "harness/WindowDriver.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace orva::test
{
namespace
{

using Clock = CMachineWitness::Clock;

constexpr size_t kChunk = 1024;
constexpr size_t kBodySize = 8'192'000;

const std::string& Response()
{
    static const std::string bytes = CHttpReply(200, std::string(kBodySize, 'x')).Bytes();
    return bytes;
}

size_t HeaderSize()
{
    return Response().size() - kBodySize;
}

// Sends so much, waits as long as the test wants, and then sends the rest.
CServerScript Hold(size_t bytes, const CGate& goOn)
{
    return CServerScript().Send(Response().substr(0, bytes)).WaitFor(goOn).Send(Response().substr(bytes));
}

const Stall kStalls[] = {
    {"connecting, nobody answers", true, false, WorkerPhase::Connecting, 0, nullptr},
    {"connected, not a byte", false, true, WorkerPhase::WaitingForHeaders, 0,
     [](const CGate& goOn) { return Hold(0, goOn); }},
    {"half a header line", false, true, WorkerPhase::WaitingForHeaders, 0,
     [](const CGate& goOn) { return Hold(20, goOn); }},
    {"headers, no body", false, true, WorkerPhase::Body, 0, HoldAfterHeaders},
    {"1,024,000 of 8,192,000 bytes", false, true, WorkerPhase::Body, 1'024'000,
     [](const CGate& goOn) { return Hold(HeaderSize() + 1'024'000, goOn); }},
    {"10 bytes a second", false, false, WorkerPhase::Body, 0,
     [](const CGate& goOn) {
         return CServerScript()
             .Send(Response().substr(0, HeaderSize()))
             .SendSlowly(Response().substr(HeaderSize(), 200), 1, 100)
             .WaitFor(goOn)
             .Send(Response().substr(HeaderSize() + 200));
     }},
    {"data in plenty", false, true, WorkerPhase::Body, kChunk * 100,
     [](const CGate& goOn) { return CServerScript().SendSlowly(Response(), 10'000, 10).WaitFor(goOn); }},
};

} // namespace

CServerScript HoldAfterHeaders(const CGate& goOn)
{
    return Hold(HeaderSize(), goOn);
}

std::span<const Stall> Stalls()
{
    return kStalls;
}

CStalledDownload::CStalledDownload(CLoopbackServer& server, CWorkerWatch& watch,
                                   const CMachineWitness& witness, const Stall& stall, EndingAction action,
                                   const std::string& path)
    : m_stall(stall), m_action(action), m_watch(watch), m_witness(witness),
      m_path(m_folder.File(L"setup.bin"))
{
    m_download.path = path;
    watch.Watch(m_download);
    if (stall.unanswering)
    {
        m_nobody = std::make_unique<CUnansweringPort>();
        m_url =
            L"http://127.0.0.1:" + std::to_wstring(m_nobody->Port()) + std::wstring(path.begin(), path.end());
    }
    else
    {
        server.On(path, stall.script(m_goOn));
        m_url = server.WideUrl(path);
    }
}

CStalledDownload::~CStalledDownload()
{
    m_watch.Forget(m_download);
}

EndingTimes CStalledDownload::Run()
{
    INT_PTR result = 0;
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState());
        CObservedDownload dialog;
        dialog.m_url = m_url.c_str();
        dialog.m_filePath = m_path.c_str();
        dialog.before = [this](HWND window, UINT, WPARAM) { m_dialog = window; };
        SetActiveWindow(m_owner.Handle());
        std::thread user([this] { PlayUser(); });
        result = dialog.DoModal();
        const double dialogTime = CMachineWitness::Since(m_start);
        m_goOn.Open();
        user.join();
        m_times.dialog = dialogTime;
        m_times.heldUp = m_witness.HeldUpSince(m_start);
    }
    EXPECT_NE(result, IDOK) << m_stall.name;
    EXPECT_FALSE(FileExists(m_path)) << m_stall.name;
    return m_times;
}

bool CStalledDownload::IsStalled() const
{
    return m_download.phase == m_stall.phase && FileSize(m_path.c_str()) >= m_stall.received &&
           IsWindowVisible(m_dialog);
}

void CStalledDownload::PlayUser()
{
    EXPECT_TRUE(WaitUntil([this] { return IsStalled(); })) << m_stall.name;
    // The worker has come to where it waits; another moment, and it does.
    Sleep(30);
    m_start = Clock::now();
    switch (m_action)
    {
    case EndingAction::Cancel:
        EXPECT_TRUE(ClickButton(m_dialog, IDCANCEL)) << m_stall.name;
        break;
    case EndingAction::Destroy:
        CDownloadOwner::DestroyDialog(m_owner.Handle(), m_dialog);
        break;
    case EndingAction::Close:
        PostMessageW(m_dialog, WM_CLOSE, 0, 0);
        Sleep(kServerSilence);
        m_goOn.Open();
        break;
    }
    EXPECT_EQ(WaitForSingleObject(m_download.thread, kPatience), WAIT_OBJECT_0) << m_stall.name;
    m_times.worker = CMachineWitness::Since(m_start);
}

} // namespace orva::test
