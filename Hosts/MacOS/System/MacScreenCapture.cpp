#include "Hosts/MacOS/System/MacScreenCapture.h"

#include "Hosts/MacOS/System/System.h"

namespace quorvel {

bool MacScreenCapture::preflightAccess() const
{
    return CGPreflightScreenCaptureAccess();
}

bool MacScreenCapture::requestAccess()
{
    return CGRequestScreenCaptureAccess();
}

}
