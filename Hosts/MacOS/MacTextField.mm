#include "Hosts/MacOS/MacTextField.h"

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/TextLine.h"

@interface QVTextField : NSTextField
@property (nonatomic, copy) void (^onFocused)(void);
/// Before it has an editor too: what hears of the focus may ask for it.
@property (nonatomic, readonly) BOOL hasFocus;
@end

@implementation QVTextField {
    BOOL _isBecoming;
}

- (BOOL)becomeFirstResponder
{
    _isBecoming = YES;
    const BOOL accepts = [super becomeFirstResponder];
    if (accepts && self.onFocused)
        self.onFocused();
    _isBecoming = NO;
    return accepts;
}

- (BOOL)hasFocus
{
    return _isBecoming || self.currentEditor != nil;
}

- (void)moveCaretToEnd
{
    NSText* editor = self.currentEditor;
    editor.selectedRange = NSMakeRange(editor.string.length, 0);
}

@end

@interface QVTextFieldDelegate : NSObject <NSTextFieldDelegate>
@property (nonatomic) quorvel::NativeTextFieldClient* client;
@end

@implementation QVTextFieldDelegate

- (void)controlTextDidChange:(NSNotification*)notification
{
    NSTextField* field = notification.object;
    // What is being composed is not yet the text.
    NSText* editor = field.currentEditor;
    const bool isComposing = [editor conformsToProtocol:@protocol(NSTextInputClient)] &&
        [(id<NSTextInputClient>)editor hasMarkedText];
    if (self.client && !isComposing)
        self.client->fieldTextDidChange(quorvel::fromSystem(field.stringValue));
}

- (void)controlTextDidEndEditing:(NSNotification*)notification
{
    if (self.client)
        self.client->fieldFocusDidChange(false);
}

@end

namespace quorvel {

MacTextField::MacTextField(NSView* over, NativeTextFieldClient& client)
    : m_field([[QVTextField alloc] initWithFrame:NSZeroRect])
    , m_delegate([[QVTextFieldDelegate alloc] init])
    , m_over(over)
{
    m_delegate.client = &client;
    m_field.delegate = m_delegate;
    m_field.onFocused = ^{ client.fieldFocusDidChange(true); };
    m_field.bordered = NO;
    m_field.bezeled = NO;
    m_field.drawsBackground = NO;
    m_field.focusRingType = NSFocusRingTypeNone;
    m_field.usesSingleLineMode = YES;
    m_field.cell.scrollable = YES;
    m_field.hidden = YES;
    [m_over addSubview:m_field];
}

MacTextField::~MacTextField()
{
    m_delegate.client = nullptr;
    m_field.onFocused = nil;
    m_field.delegate = nil;
    [m_field removeFromSuperview];
}

void MacTextField::setFrame(const Rect& frame)
{
    m_frame = frame;
    place();
}

/// A field draws its line at the top of its frame.
void MacTextField::place()
{
    const double height = m_field.cell.cellSize.height;
    m_field.hidden = m_frame.isEmpty();
    m_field.frame = toSystem(m_frame.centred({m_frame.width, height}));
}

void MacTextField::setStyle(const TextStyle& style)
{
    m_field.font = interfaceFont(style);
    m_field.textColor = [NSColor colorWithCGColor:toSystem(style.color).get()];
    place();
}

void MacTextField::setPlaceholder(std::string_view utf8)
{
    m_field.placeholderString = toSystem(utf8);
    m_field.accessibilityLabel = toSystem(utf8);
}

void MacTextField::setText(std::string_view utf8)
{
    [(id<NSTextInputClient>)m_field.currentEditor unmarkText];
    NSString* text = toSystem(utf8);
    m_field.stringValue = text ? text : @"";
    [m_field moveCaretToEnd];
}

/// Whoever comes with Tab, or goes on typing, would find everything selected.
void MacTextField::setFocused(bool isFocused)
{
    if (isFocused == static_cast<bool>(m_field.hasFocus))
        return;
    [m_field.window makeFirstResponder:isFocused ? m_field : m_over];
    if (isFocused)
        [m_field moveCaretToEnd];
}

}
