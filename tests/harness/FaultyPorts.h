// Ports of the loopback interface at which nobody answers.
#pragma once

namespace orva::test
{

/// Makes a TCP socket bound to a free port of 127.0.0.1, which child processes do not inherit. Throws
/// std::runtime_error if that fails. The caller closes it.
unsigned long long BindLoopbackSocket(unsigned short& port);

/// Makes a socket not inheritable: child processes would hold the port, or the connection, open.
void KeepSocketToThisProcess(unsigned long long socket);

/// A port of 127.0.0.1 that refuses connections as long as the object lives.
class CRefusingPort
{
public:
    CRefusingPort();
    ~CRefusingPort();
    CRefusingPort(const CRefusingPort&) = delete;
    CRefusingPort& operator=(const CRefusingPort&) = delete;
    unsigned short Port() const { return m_port; }

private:
    unsigned long long m_socket;
    unsigned short m_port = 0;
};

} // namespace orva::test
