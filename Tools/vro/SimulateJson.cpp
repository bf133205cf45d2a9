#include "vro/SimulateJson.h"

#include "vro/JsonText.h"
#include "vro/TextEncoding.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/drivercommon/vrVertices.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/plugins/visualizers/vrMKPSimpleVisualizerData.h"

#include <charconv>
#include <cstdio>

namespace vro
{

namespace
{

const vrMKPBuffer *Live_Buffer(const vrMKParticle &particle)
{
    const vrMKPBuffer *buffer = particle.Get_Buffer();
    return buffer && buffer->Active ? buffer : nullptr;
}

/// Of a layer that nothing is selected from, the count is an old one.
int Visible_Count(const vrMKParticle &particle, const vrMKPBuffer &buffer)
{
    return particle.Get_Visualizer() && !particle.Is_Suspended() ? buffer.VisibleCount : 0;
}

void Append_Integer(int64_t value, std::string &text)
{
    char buffer[32];
    text.append(buffer, std::to_chars(buffer, std::end(buffer), value).ptr);
}

template <typename T, typename Append>
void Append_Array(const T *values, int count, Append append, std::string &text)
{
    text += '[';
    for (int index = 0; index < count; ++index) {
        if (index > 0) text += ", ";
        append(values[index], text);
    }
    text += ']';
}

// One element of a channel, by its type.
void Append_Element(float value, std::string &text)
{
    Append_Float(value, text);
}
void Append_Element(uint32_t value, std::string &text)
{
    Append_Integer(value, text);
}
void Append_Element(const Vector2 &value, std::string &text)
{
    Append_Array(&value.x, 2, Append_Float, text);
}
void Append_Element(const Vector3 &value, std::string &text)
{
    Append_Array(&value.x, 3, Append_Float, text);
}

void Append_Color(vrColor value, std::string &text)
{
    const uint32_t bytes[] = {value & 0xff, value >> 8 & 0xff, value >> 16 & 0xff, value >> 24};
    Append_Array(bytes, 4, Append_Integer, text);
}

/// `values` is what has the elements by their slots.
template <typename Values, typename Append>
void Append_Spans(const Values &values, const vrMKPSpans &spans, Append append, std::string &text)
{
    text += '[';
    bool isFirst = true;
    for (const vrMKPSpan span : spans) {
        for (int slot = span.First; slot < span.First + span.Count; ++slot) {
            if (!isFirst) text += ", ";
            isFirst = false;
            append(values[slot], text);
        }
    }
    text += ']';
}

template <typename Values>
void Append_Live(const vrMKPBuffer &buffer, const Values &values, std::string &text)
{
    Append_Spans(
        values, buffer.Live_Spans(), [](const auto &value, std::string &out) { Append_Element(value, out); }, text);
}

void Append_Channel(const vrMKParticle &particle, const vrMKPBuffer &buffer, MKPAttribTypes channel, std::string &text)
{
    switch (channel) {
    case MKP_PROJECTILE_STARTING_POSITION: return Append_Live(buffer, buffer.ProjectileStartingPosition, text);
    case MKP_PREVIOUS_POSITION: return Append_Live(buffer, buffer.PreviousPosition, text);
    case MKP_POSITION: return Append_Live(buffer, buffer.Position, text);
    case MKP_PROJECTILE_TARGET_POSITION: return Append_Live(buffer, buffer.ProjectileTargetPosition, text);
    case MKP_VELOCITY: return Append_Live(buffer, buffer.Velocity, text);
    case MKP_AGE: return Append_Live(buffer, buffer.Age, text);
    case MKP_MAX_AGE: return Append_Live(buffer, buffer.MaxAge, text);
    case MKP_TIME: return Append_Live(buffer, buffer.Time, text);
    case MKP_PROJECTILE_FLIGHT_DURATION: return Append_Live(buffer, buffer.ProjectileFlightDuration, text);
    case MKP_FLAGS: return Append_Live(buffer, buffer.Flags, text);
    case MKP_ID: return Append_Live(buffer, buffer.ID, text);
    case MKP_NUMBER: return Append_Live(buffer, buffer.Number, text);
    case MKP_UV: return Append_Live(buffer, buffer.UV, text);
    case MKP_DUV: return Append_Live(buffer, buffer.DUV, text);
    case MKP_COLOR: return Append_Spans(buffer.Color, buffer.Live_Spans(), Append_Color, text);
    case MKP_SIZE: return Append_Live(buffer, buffer.Size, text);
    case MKP_ROTATION: return Append_Live(buffer, buffer.Rotation, text);
    case MKP_WORLD_POSITION: return Append_Live(buffer, buffer.WorldPosition, text);
    case MKP_RENDER:
        return Append_Array(buffer.Render, Visible_Count(particle, buffer), Append_Integer, text); // a list of slots
    case MKP_SORTING_RELATIVE_TO_GROUP: return Append_Live(buffer, buffer.SortingRelativeToGroup, text);
    case MKP_ATTRIBUTE_COUNT: break;
    }
}

const vrMKPSimpleVisualizerData *Pending_Vertices(const vrMKParticle &particle)
{
    const vrMKPBuffer *buffer = Live_Buffer(particle);
    if (!buffer || !particle.Get_Visualizer() || particle.Is_Suspended()) return nullptr;
    const auto *data = MK_Dynamic_Cast<vrMKPSimpleVisualizerData>(buffer->VisualizerData.Get());
    return data && data->VertexCount > 0 ? data : nullptr;
}

/// What the layouts have in common.
template <typename Vertex>
void Append_Vertex(const Vertex &vertex, std::string &text)
{
    text += "{ \"position\": ";
    Append_Element(vertex.Position, text);
    text += ", \"normal\": ";
    Append_Element(vertex.Normal, text);
    text += ", \"uv\": ";
    Append_Element(vertex.UV, text);
    text += ", \"color\": ";
    Append_Color(vertex.Color, text);
    text += " }";
}

std::string Name_Text(std::string_view bytes)
{
    return Is_Valid_Utf8(bytes) ? std::string(bytes) : Windows_1252_To_Utf8(bytes);
}

void Append_Member(const char *name, int64_t value, std::string &text)
{
    text.append("\"").append(name).append("\": ");
    Append_Integer(value, text);
    text += ", ";
}

} // namespace

SimulateJson::SimulateJson(std::vector<MKPAttribTypes> channels, bool printsVertices)
    : Channels(std::move(channels)), Text("{\n  \"frames\": ["), PrintsVertices(printsVertices)
{
}

bool SimulateJson::Add_Frame(int frame, float time, const vrMKParticleEmitter &emitter)
{
    Text += HasFrames ? ",\n    { " : "\n    { ";
    HasFrames = true;
    Append_Member("frame", frame, Text);
    Text += "\"time\": ";
    Append_Float(time, Text);
    Text += ", \"layers\": [";
    bool isFirst = true;
    for (int index = 0; index < emitter.Get_Particle_Renderable_Count(); ++index) {
        const auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(emitter.Peek_Particle_Renderable(index));
        for (int layer = 0; group && layer < group->Particle_Count(); ++layer) {
            Text += isFirst ? "\n      { " : ",\n      { ";
            isFirst = false;
            if (!Add_Layer(index, layer, *group->Get_Particle(layer))) return false;
        }
    }
    Text += isFirst ? "] }" : "\n    ] }";
    return Flush();
}

bool SimulateJson::Add_Layer(int renderable, int layer, const vrMKParticle &particle)
{
    const vrMKPBuffer *buffer = Live_Buffer(particle);
    Append_Member("renderable", renderable, Text);
    Append_Member("layer", layer, Text);
    Text += "\"name\": ";
    Append_String(Name_Text(particle.Get_Name()), Text);
    Text += ", ";
    Append_Member("capacity", buffer ? buffer->Capacity : 0, Text);
    Append_Member("active", buffer ? buffer->ActiveCount : 0, Text);
    Append_Member("head", buffer ? buffer->Head : -1, Text);
    Append_Member("tail", buffer ? buffer->Tail : -1, Text);
    Text.back() = '\n'; // in place of the blank
    Text += "        ";
    Append_Member("state", buffer ? buffer->SpawnerState : SPAWNER_WAITING, Text);
    Append_Member("visible", buffer ? Visible_Count(particle, *buffer) : 0, Text);
    const vrBounds &bounds = particle.Get_Bounds();
    Text += "\"bounds\": { \"center\": ";
    Append_Element(bounds.Center, Text);
    Text += ", \"extent\": ";
    Append_Element(bounds.Extent, Text);
    Text += " },\n        \"channels\": {";
    bool isFirst = true;
    for (const MKPAttribTypes channel : Channels) {
        Text += isFirst ? "\n          \"" : ",\n          \"";
        isFirst = false;
        Text.append(MKP_ATTRIBUTE_NAMES[channel]).append("\": ");
        if (buffer)
            Append_Channel(particle, *buffer, channel, Text);
        else
            Text += "[]";
        if (!Flush()) return false;
    }
    Text += " }";
    if (PrintsVertices && !Add_Vertices(particle)) return false;
    Text += " }";
    return true;
}

bool SimulateJson::Add_Vertices(const vrMKParticle &particle)
{
    Text += ",\n        \"vertices\": [";
    const auto *data = Pending_Vertices(particle);
    const size_t size = data ? static_cast<size_t>(data->VertexBytes / data->VertexCount) : 0;
    for (int index = 0; data && index < data->VertexCount; ++index) {
        Text += index == 0 ? "\n          " : ",\n          ";
        const uint8_t *vertex = static_cast<const uint8_t *>(data->Vertices) + static_cast<size_t>(index) * size;
        if (size == sizeof(vrLitBumpVertex))
            Append_Vertex(*reinterpret_cast<const vrLitBumpVertex *>(vertex), Text);
        else
            Append_Vertex(*reinterpret_cast<const vrLitVertex *>(vertex), Text);
        if (!Flush()) return false;
    }
    Text += "]";
    return true;
}

bool SimulateJson::Flush()
{
    const bool isWritten = std::fwrite(Text.data(), 1, Text.size(), stdout) == Text.size();
    Text.clear();
    return isWritten;
}

bool SimulateJson::Finish()
{
    Text += HasFrames ? "\n  ]\n}\n" : "]\n}\n";
    return Flush();
}

} // namespace vro
