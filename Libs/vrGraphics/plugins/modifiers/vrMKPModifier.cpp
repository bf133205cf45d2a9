#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

void vrMKPModifier::Modify(vrMKPBuffer &buffer, int index) const
{
    Prepare_Frame(buffer, index);
    const vrMKPSpans spans = Get_Walk() == WALK_NEW ? buffer.New_Spans() : buffer.Live_Spans();
    for (const vrMKPSpan span : spans) Apply(buffer, index, span);
}
