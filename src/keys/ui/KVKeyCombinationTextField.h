#pragma once
// The field that records a key combination: while it has focus the next key
// pressed with its modifiers becomes its value instead of text. The rules live
// in KVKeyCombinationRecorder; this is the Qt side and the table cell that uses it.

#include <QLineEdit>
#include <QStyledItemDelegate>
#include <optional>

#include "keys/KVKeyCombinationRecorder.h"

class QKeyEvent;

namespace corvalis {

// A Qt key event as the recorder reads it; none for a modifier key pressed on its own.
std::optional<KeyEvent> keyEventFromQt(const QKeyEvent& event);

// Responders handed to these widgets (nextFirstResponderForControl) are QWidget pointers.
class KVKeyCombinationTextField : public QLineEdit, private KeyCombinationFieldHost {
    Q_OBJECT

public:
    explicit KVKeyCombinationTextField(QWidget* parent = nullptr);
    ~KVKeyCombinationTextField() override;

    void setDelegate(KeyCombinationFieldDelegate* delegate) {
        delegate_ = delegate;
        recorder_.setDelegate(delegate);
    }
    const std::optional<KVKeyCombination>& objectValue() const { return recorder_.objectValue(); }
    void setObjectValue(const std::optional<KVKeyCombination>& value) { recorder_.setObjectValue(value); }
    // Redraws the text, e.g. after the keyboard layout changed the key names.
    void updateDisplayString() { recorder_.updateDisplayString(); }
    // Whether the user recorded a new value since the last call.
    bool takeRecordedChange();

signals:
    // The user recorded a new value (not sent for setObjectValue).
    void keyCombinationChanged();

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void beep() override;
    void didChangeText() override;
    void setDisplayString(const std::string& text) override;
    void makeFirstResponder(Responder responder) override;
    void endRecording();

    KVKeyCombinationRecorder recorder_;
    KeyCombinationFieldDelegate* delegate_ = nullptr;
    bool recording_ = false;
    bool recordedChange_ = false;
};

// Item data role of a key combination cell: a KVKeyCombination, or an invalid
// QVariant for none (also what setData receives when the user clears the cell).
inline constexpr int KeyCombinationRole = Qt::UserRole + 110;

// Edits a key combination cell with a KVKeyCombinationTextField. The model
// gets a value only when the user recorded one, never when editing merely ends.
class KVKeyCombinationCellDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit KVKeyCombinationCellDelegate(KeyCombinationFieldDelegate* fieldDelegate, QObject* parent = nullptr);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    KeyCombinationFieldDelegate* fieldDelegate_;
};

}  // namespace corvalis
