#include "Hosts/X11/Input/KeyInput.h"

#include <utility>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

KeyInput::KeyInput(Connection& connection, Dispatch& dispatch, Keyboard& keyboard)
    : m_keyboard(keyboard)
    , m_method(connection, dispatch, *this)
{
}

void KeyInput::setReceiver(Receiver receiver, xcb_window_t window)
{
    m_window = window;
    if (receiver == m_receiver)
        return;
    m_receiver = receiver;
    m_keyboard.dropSequence();
    m_sequence.clear();
    m_method.unfocus();
    m_field = nullptr;
    // It kept the composition while it did not have the keyboard; the input method did not.
    auto* field = this->field();
    if (field && std::exchange(m_composing, nullptr) == m_receiver.client)
        field->setComposition({}, 0);
    followField();
}

void KeyInput::press(const xcb_key_press_event_t& event)
{
    const auto press = m_keyboard.arrive(event);
    if (press && !(field() && m_method.take(*press)))
        deliver(*press);
}

void KeyInput::release(const xcb_key_release_event_t& event)
{
    m_keyboard.release(event);
}

void KeyInput::textInputDidChange(const SurfaceClient& client)
{
    if (&client == m_receiver.client)
        followField();
}

void KeyInput::forgetComposition(const SurfaceClient& client)
{
    if (&client != m_receiver.client)
        return;
    m_composing = nullptr;
    m_keyboard.dropSequence();
    m_sequence.clear();
    m_method.forget();
}

TextInputClient* KeyInput::field() const
{
    return m_receiver.client ? m_receiver.client->textInputClient() : nullptr;
}

void KeyInput::followField()
{
    auto* field = this->field();
    auto* before = std::exchange(m_field, field);
    if (!field)
        return m_method.unfocus();
    placeSpot(*field);
    if (before == field)
        return;
    if (before)
        m_method.forget();
    m_method.focus(m_window);
}

void KeyInput::placeSpot(const TextInputClient& field)
{
    const auto frame = m_receiver.surface->framePixels();
    const double scale = m_receiver.surface->scale();
    const auto caret = field.caretFrame();
    m_method.setSpot({frame.x + caret.x * scale, frame.y + caret.maxY() * scale});
}

void KeyInput::deliver(const KeyPress& press)
{
    const auto key = m_keyboard.translate(press);
    auto* field = this->field();
    if (key && key->isComposed && field) {
        m_sequence.clear();
        m_composing = nullptr;
        return field->insertText(key->event.characters);
    }
    showSequence(field);
    if (key && m_receiver.client)
        m_receiver.client->keyPressed(key->event);
}

/// An accent is seen while it waits for its letter.
void KeyInput::showSequence(TextInputClient* field)
{
    auto sequence = m_keyboard.sequence();
    if (!field || sequence == m_sequence)
        return;
    m_sequence = std::move(sequence);
    m_composing = m_sequence.empty() ? nullptr : m_receiver.client;
    field->setComposition(m_sequence, m_sequence.size());
}

// MARK: What the input method says

void KeyInput::inputMethodCommits(const std::string& utf8)
{
    m_composing = nullptr;
    if (auto* field = this->field(); field && !utf8.empty())
        field->insertText(utf8);
}

void KeyInput::inputMethodComposes(const std::string& utf8, std::size_t caret)
{
    auto* field = this->field();
    if (!field)
        return;
    m_composing = utf8.empty() ? nullptr : m_receiver.client;
    field->setComposition(utf8, caret);
}

void KeyInput::inputMethodReturns(const KeyPress& press)
{
    deliver(press);
}

}
