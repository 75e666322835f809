#pragma once

/// Has the standard streams take and give bytes as they are, on systems where line ends would be
/// changed on the way.
void useBinaryStreams();
