#include "support/LogStream.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

CLogStream::~CLogStream()
{
    if (IsOpen())
    {
        _close(m_file);
    }
}

void CLogStream::Open(const std::wstring& path, bool keep)
{
    const int mode = _O_WRONLY | _O_CREAT | _O_TEXT | (keep ? _O_APPEND : _O_TRUNC);
    m_file = _wsopen(path.c_str(), mode, _SH_DENYNO, _S_IREAD | _S_IWRITE);
}

void CLogStream::Write(std::string_view text)
{
    // The runtime counts the bytes before it has turned line feeds into line ends.
    if (IsOpen() && !m_hasFailed)
    {
        m_hasFailed =
            _write(m_file, text.data(), static_cast<unsigned>(text.size())) != static_cast<int>(text.size());
    }
}
