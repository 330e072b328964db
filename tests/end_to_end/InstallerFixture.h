// What the tests of a failing download share: the user accepts the offer, and the download fails.
#pragma once

#include "end_to_end/FaultFixture.h"

namespace orva::test
{

/// A download that fails, started by the check that the test's parameter names.
class InstallerFixture : public FaultFixture, public testing::WithParamInterface<CheckMode>
{
protected:
    /// Publishes a newer build, which the user accepts. The server answers the installer's request with the
    /// script.
    void Offer(const CServerScript& script);
    /// Expects the progress dialog, the connection error and "download canceled", and that the file is
    /// deleted and its folder left. Adds the row.
    void ExpectFailedDownload(int number, const std::string& fault);
    /// Expects that the file is taken as complete and started, which the system refuses with a message of its
    /// own; the file stays. Adds the row.
    void ExpectDownloadedFile(int number, const std::string& fault, const std::string& bytes);
    /// Has the user close the system's own message that the file cannot be started.
    void ExpectSystemMessage();
    /// Runs the checks and adds the row.
    void Run(int number, const std::string& fault);
};

} // namespace orva::test
