// What the tests of a failing download share: the user accepts the offer, then everything goes wrong.
#pragma once

#include "end_to_end/FaultFixture.h"

namespace orva::test
{

/// A download that fails, met by the check of the test's parameter.
class InstallerFixture : public FaultFixture, public testing::WithParamInterface<CheckMode>
{
protected:
    /// Publishes a newer build, accepted by the user, whose installer is at this link; the server answers for
    /// it with the script.
    void Offer(const CServerScript& script);
    /// Expects the progress dialog, then 121 and 132, and that the file is gone and its folder left. Adds the
    /// row.
    void ExpectFailedDownload(int number, const std::string& fault);
    /// Expects that the file was taken for complete and started, which the system refuses with a message of
    /// its own; the file stays. Adds the row.
    void ExpectDownloadedFile(int number, const std::string& fault, const std::string& bytes);
    /// Has the user close the system's own message that the file cannot be started.
    void ExpectSystemMessage();
    /// Runs the checks and adds the row.
    void Run(int number, const std::string& fault);
};

} // namespace orva::test
