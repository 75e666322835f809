#include "../BinaryStreams.h"

void useBinaryStreams()
{
    // They never do anything else here.
}
