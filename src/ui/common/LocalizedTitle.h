#pragma once

class QObject;

// Localises a tree of user-interface objects in place: window titles, button
// and label texts, group-box titles, combo-box items, tab titles, menu and
// action texts (with their submenus) and the horizontal headers of item
// views. The current text is the key into the localisation table; empty keys
// and "..." are left alone, and a text is replaced only when the table holds a
// different, non-empty text for it. Child widgets are walked.
void localizedTitleByObject(QObject* object);
