#include "keys/ui/KVKeyCombinationTextField.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>

#include "controls/LocalizedText.h"

namespace corvalis {

namespace {

bool isModifierKey(int key) {
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Meta:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_Mode_switch:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_ScrollLock:
        return true;
    default:
        return false;
    }
}

}  // namespace

std::optional<KeyEvent> keyEventFromQt(const QKeyEvent& event) {
    // A modifier pressed alone is the start of a combination, not one.
    if (isModifierKey(event.key())) return std::nullopt;
    KeyEvent key;
    key.nativeScanCode = event.nativeScanCode();
    // As the original platform reads a PC keyboard: Alt is Option, the Super
    // ("Windows") key is Command.
    Qt::KeyboardModifiers held = event.modifiers();
    if (held & Qt::ShiftModifier) key.modifierFlags |= eventflags::Shift;
    if (held & Qt::ControlModifier) key.modifierFlags |= eventflags::Control;
    if (held & Qt::AltModifier) key.modifierFlags |= eventflags::Option;
    if (held & Qt::MetaModifier) key.modifierFlags |= eventflags::Command;
    switch (event.key()) {
    case Qt::Key_Tab: key.charactersIgnoringModifiers = U"\t"; break;
    case Qt::Key_Backtab: key.charactersIgnoringModifiers = U"\x19"; break;
    case Qt::Key_Escape: key.charactersIgnoringModifiers = U"\x1b"; break;
    default:
        if (event.key() >= 0x20 && event.key() < 0x110000)
            key.charactersIgnoringModifiers = std::u32string(1, static_cast<char32_t>(QChar::toLower(char32_t(event.key()))));
    }
    return key;
}

KVKeyCombinationTextField::KVKeyCombinationTextField(QWidget* parent) : QLineEdit(parent), recorder_(*this) {
    // The text is only ever the recorded combination: no caret, typing, pasting or menu.
    setReadOnly(true);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    setContextMenuPolicy(Qt::NoContextMenu);
    setFocusPolicy(Qt::StrongFocus);
    setToolTip(localized("RecordKeyCombinationHelp"));
    setAccessibleDescription(toolTip());
}

KVKeyCombinationTextField::~KVKeyCombinationTextField() {
    // Destroyed while focused: the controller must not keep its hot keys suspended.
    endRecording();
}

bool KVKeyCombinationTextField::takeRecordedChange() {
    bool changed = recordedChange_;
    recordedChange_ = false;
    return changed;
}

bool KVKeyCombinationTextField::event(QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride) return QLineEdit::event(event);
    auto* keyEvent = static_cast<QKeyEvent*>(event);
    std::optional<KeyEvent> key = keyEventFromQt(*keyEvent);
    if (key && isNavigationEvent(*key)) return QLineEdit::event(event);  // Tab moves focus as anywhere else
    // Every other key belongs to the field, even one the window uses as a shortcut.
    event->accept();
    if (event->type() == QEvent::KeyPress && key) recorder_.keyDown(*key);
    return true;
}

void KVKeyCombinationTextField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    if (!recording_) {
        recording_ = true;
        recorder_.becomeFirstResponder();
    }
    selectAll();
}

void KVKeyCombinationTextField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    endRecording();
    // Leaving the window ends the recording for good, so coming back does not suspend the hot keys again.
    if (event->reason() == Qt::ActiveWindowFocusReason)
        makeFirstResponder(delegate_ ? delegate_->nextFirstResponderForControl() : nullptr);
}

void KVKeyCombinationTextField::endRecording() {
    if (!recording_) return;
    recording_ = false;
    recorder_.resignFirstResponder();
}

void KVKeyCombinationTextField::beep() { QApplication::beep(); }

void KVKeyCombinationTextField::didChangeText() {
    recordedChange_ = true;
    emit keyCombinationChanged();
}

void KVKeyCombinationTextField::setDisplayString(const std::string& text) {
    setText(QString::fromStdString(text));
    if (hasFocus()) selectAll();
}

void KVKeyCombinationTextField::makeFirstResponder(Responder responder) {
    if (responder) static_cast<QWidget*>(responder)->setFocus(Qt::OtherFocusReason);
    else clearFocus();
}

KVKeyCombinationCellDelegate::KVKeyCombinationCellDelegate(KeyCombinationFieldDelegate* fieldDelegate, QObject* parent)
    : QStyledItemDelegate(parent), fieldDelegate_(fieldDelegate) {}

QWidget* KVKeyCombinationCellDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                                    const QModelIndex& /*index*/) const {
    auto* field = new KVKeyCombinationTextField(parent);
    field->setFrame(false);
    field->setDelegate(fieldDelegate_);
    // Qt's delegate API is const; committing is what the signal is for.
    auto* self = const_cast<KVKeyCombinationCellDelegate*>(this);
    connect(field, &KVKeyCombinationTextField::keyCombinationChanged, self, [self, field] { emit self->commitData(field); });
    return field;
}

void KVKeyCombinationCellDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    auto* field = qobject_cast<KVKeyCombinationTextField*>(editor);
    if (!field) return;
    QVariant value = index.data(KeyCombinationRole);
    field->setObjectValue(value.isValid() ? std::optional(value.value<KVKeyCombination>()) : std::nullopt);
}

void KVKeyCombinationCellDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                                const QModelIndex& index) const {
    auto* field = qobject_cast<KVKeyCombinationTextField*>(editor);
    // The view also commits when editing merely ends; only a recording is an edit.
    if (!field || !field->takeRecordedChange()) return;
    const std::optional<KVKeyCombination>& value = field->objectValue();
    model->setData(index, value ? QVariant::fromValue(*value) : QVariant(), KeyCombinationRole);
}

bool KVKeyCombinationCellDelegate::eventFilter(QObject* object, QEvent* event) {
    auto* field = qobject_cast<KVKeyCombinationTextField*>(object);
    if (!field) return QStyledItemDelegate::eventFilter(object, event);
    // Escape, Return and Tab are the field's to record or pass on, not the view's
    // usual commit and revert; leaving the field ends the edit.
    if (event->type() == QEvent::FocusOut) emit closeEditor(field, NoHint);
    return false;
}

}  // namespace corvalis
