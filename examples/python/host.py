"""A host in Python, for one that runs on Windows: hands rules in, shows the dialog, prints what it gives back.

With --declarations it prints what it takes the structs and functions of registry_rules.h to be, on any system.
"""
import ctypes
import sys

TERMINATED = ctypes.c_size_t(-1).value
CHANGED = 1


class Report(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t)] + [
        (name, ctypes.c_uint64) for name in ("keys", "values", "bytes", "removed_keys", "removed_values", "notes")]


class Target(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("user", ctypes.c_void_p), ("user_length", ctypes.c_size_t),
                ("drive", ctypes.c_int32)]


STRUCTS = {"rr_report": Report, "rr_target": Target}
FUNCTIONS = ("rr_rules_create", "rr_rules_close", "rr_rules_add_key", "rr_rules_add_value", "rr_rules_count",
             "rr_rules_get_key", "rr_show", "rr_last_error", "rr_capture")


class Library:
    """The functions as methods; one that fails raises OSError with the library's own text."""

    def __init__(self, path="RulesC.dll"):
        self._dll = ctypes.CDLL(path)

    def __getattr__(self, name):
        function = getattr(self._dll, "rr_" + name)
        function.restype = ctypes.c_int32

        def call(*arguments):
            status = function(*arguments)
            if status < 0:
                raise OSError(f"{name}: {self.last_error_text()}")
            return status
        return call

    def last_error_text(self):
        buffer, length = ctypes.create_unicode_buffer(500), ctypes.c_size_t()
        self._dll.rr_last_error(buffer, ctypes.c_size_t(500), ctypes.byref(length))
        return buffer.value


def main():
    library = Library()
    rules, answer = ctypes.c_void_p(), ctypes.c_int32()
    end = ctypes.c_size_t(TERMINATED)
    library.rules_create(ctypes.byref(rules))
    library.rules_add_key(rules, ctypes.c_wchar_p("HKCU\\Software\\Fernhollow"), end, 1, 0)
    library.rules_add_value(rules, ctypes.c_wchar_p("HKCU\\Environment"), end, ctypes.c_wchar_p("TEMP"), end, 1)
    library.show(rules, None, ctypes.byref(answer))
    print("changed" if answer.value == CHANGED else "unchanged")
    keys, values = ctypes.c_size_t(), ctypes.c_size_t()
    library.rules_count(rules, ctypes.byref(keys), ctypes.byref(values))
    for index in range(keys.value):
        key, length = ctypes.create_unicode_buffer(1000), ctypes.c_size_t()
        is_branch, row = ctypes.c_int32(), ctypes.c_int32()
        library.rules_get_key(rules, ctypes.c_size_t(index), key, ctypes.c_size_t(1000), ctypes.byref(length),
                              ctypes.byref(is_branch), ctypes.byref(row))
        print(f"{row.value}: {key.value}")
    report = Report(size=ctypes.sizeof(Report))
    library.capture(rules, None, ctypes.c_wchar_p("captured.reg"), end, 1, None, ctypes.byref(report))
    print("captured keys:", report.keys)
    library.rules_close(rules)


if __name__ == "__main__":
    if sys.argv[1:] == ["--declarations"]:
        for name, struct in STRUCTS.items():
            print("struct", name, ctypes.sizeof(struct), *(f"{f[0]}:{getattr(struct, f[0]).offset}" for f in struct._fields_))
        for name in FUNCTIONS:
            print("function", name)
    else:
        main()
