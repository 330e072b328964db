// The program that ./run starts under Wine. Its status is 0 if everything was seen, 1 if not, and 2 if it
// could not play.
#include "demo/Gallery.h"
#include "demo/Play.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <exception>

int wmain(int count, wchar_t** arguments)
{
    using namespace orva::demo;
    _setmode(_fileno(stdout), _O_BINARY);
    try
    {
        const CSettings settings = ReadSettings(count, arguments);
        CTimeline timeline;
        const bool isSeen =
            settings.isGallery ? ShowGallery(settings, timeline) : CPlay(settings, timeline).Run();
        return isSeen ? 0 : 1;
    }
    catch (const std::exception& error)
    {
        std::printf("run: %s\n", error.what());
        return 2;
    }
}
