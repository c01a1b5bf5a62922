// The life of a cell editor: its window is made anew for each edit, its object stays, and both may be taken away while
// one of its handlers is on the stack, since handlers send messages and show message boxes.
#pragma once

struct CEditorLife {
    int m_handlers = 0;          // how many handlers of the editor are on the stack
    bool m_deleteAtEnd = false;  // the object is to go when the last of them returns
    // The edit has given its answer, or must not give one any more; what is left is to close the window. Focus changes
    // from here on are none of its business.
    bool m_ended = false;
};

// Around everything that an editor handles. `Editor` has a member m_life.
template <typename Editor>
class CEditorScope {
public:
    explicit CEditorScope(Editor* editor) : m_editor(editor) { ++m_editor->m_life.m_handlers; }
    ~CEditorScope() {
        if (--m_editor->m_life.m_handlers == 0 && m_editor->m_life.m_deleteAtEnd) delete m_editor;
    }
    CEditorScope(const CEditorScope&) = delete;
    CEditorScope& operator=(const CEditorScope&) = delete;

    // Deletes the editor that `instance` points to, with its window, and clears the pointer; the object itself goes
    // when its handlers have returned.
    static void Delete(Editor*& instance) {
        Editor* const editor = instance;
        if (editor == nullptr) return;
        instance = nullptr;
        editor->m_life.m_ended = true;
        CEditorScope scope(editor);
        editor->m_life.m_deleteAtEnd = true;
        editor->DestroyWindow();
    }

private:
    Editor* m_editor;
};
