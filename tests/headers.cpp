// Nothing of its own: this file carries the precompiled headers of the tests without Qt.
