#include "../BinaryStreams.h"

#include <fcntl.h>
#include <io.h>

#include <initializer_list>

void useBinaryStreams()
{
    for (const int descriptor : {0, 1, 2})
        _setmode(descriptor, _O_BINARY);
}
