// A picture in a PDF as a JPEG: Cairo embeds a surface's JPEG data as it
// stands (a DCT stream) instead of compressing its pixels losslessly, so a
// page of photographs is a few hundred kilobytes rather than megabytes.
#pragma once
#include <cairo.h>

// Encodes an RGB24 image surface with libjpeg at `quality` (1..100) and
// hands Cairo the bytes as the surface's JPEG data; false (the surface as
// it was) when the surface is no RGB24 image or encoding fails.
bool AttachJpeg(cairo_surface_t* image, int quality);
