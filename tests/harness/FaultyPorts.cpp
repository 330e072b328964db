#include "harness/FaultyPorts.h"

#include <winsock2.h>

#include <stdexcept>
#include <string>

namespace orva::test
{

namespace
{

struct SocketLibrary
{
    SocketLibrary()
    {
        WSADATA data;
        if (WSAStartup(MAKEWORD(2, 2), &data) != 0)
        {
            throw std::runtime_error("no sockets");
        }
    }
};

} // namespace

void KeepSocketToThisProcess(unsigned long long socket)
{
    SetHandleInformation(reinterpret_cast<HANDLE>(socket), HANDLE_FLAG_INHERIT, 0);
}

unsigned long long BindLoopbackSocket(unsigned short& port)
{
    static const SocketLibrary library;
    const SOCKET socket = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int length = sizeof address;
    if (socket == INVALID_SOCKET ||
        bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0)
    {
        throw std::runtime_error("cannot bind to 127.0.0.1: " + std::to_string(WSAGetLastError()));
    }
    KeepSocketToThisProcess(socket);
    port = ntohs(address.sin_port);
    return socket;
}

CRefusingPort::CRefusingPort()
{
    // Bound and not listening: nobody else can bind the port, and the system answers with a reset.
    m_socket = BindLoopbackSocket(m_port);
}

CRefusingPort::~CRefusingPort()
{
    closesocket(m_socket);
}

} // namespace orva::test
