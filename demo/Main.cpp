// The program that ./run and ./publish start under Wine. Its status is 0 if everything was seen, 1 if not,
// and 2 if it could not play.
#include "demo/Gallery.h"
#include "demo/Play.h"
#include "demo/Preview.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <exception>

int wmain(int, wchar_t** argument)
{
    using namespace orva::demo;
    _setmode(_fileno(stdout), _O_BINARY);
    try
    {
        const CSettings settings = {argument[1],  argument[2],  argument[3],  argument[4], argument[5],
                                    argument[6],  argument[7],  argument[8],  argument[9], argument[10],
                                    argument[11], argument[12], argument[13], argument[14]};
        CTimeline timeline;
        const bool isSeen = settings.play == L"gallery"   ? ShowGallery(settings, timeline)
                            : settings.play == L"preview" ? ShowPreview(settings, timeline)
                                                          : CPlay(settings, timeline).Run();
        return isSeen ? 0 : 1;
    }
    catch (const std::exception& error)
    {
        std::printf("run: %s\n", error.what());
        return 2;
    }
}
