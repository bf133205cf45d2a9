#include "vrGraphics/plugins/transformers/vrMKPTransformer.h"

void vrMKPTransformer::Transform(vrMKPBuffer &buffer) const
{
    for (const vrMKPSpan span : buffer.Live_Spans()) Transform_Span(buffer, span);
    Transform_Companion(buffer);
}
