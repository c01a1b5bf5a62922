// A host in Go: hands rules in, shows the dialog, reads them back, and captures what they select.
package main

import (
	"fmt"
	"os"
	"runtime"
	"syscall"
	"unsafe"
)

var library = syscall.NewLazyDLL("RulesC.dll")

const (
	told    = 1 // done, but for what the notes tell
	changed = 1
	replace = 1
)

// call gives the status, which is negative for a failure.
func call(name string, arguments ...uintptr) int32 {
	status, _, _ := library.NewProc(name).Call(arguments...)
	return int32(status)
}

func must(name string, arguments ...uintptr) {
	if status := call(name, arguments...); status < 0 {
		fmt.Printf("%s: status %d: %s\n", name, status, lastError())
		os.Exit(1)
	}
}

// text gives the place and the length of a text in UTF-16.
func text(s string) (uintptr, uintptr) {
	units, err := syscall.UTF16FromString(s)
	if err != nil {
		panic(err)
	}
	return uintptr(unsafe.Pointer(&units[0])), uintptr(len(units) - 1)
}

func lastError() string {
	var buffer [500]uint16
	var length uintptr
	call("rr_last_error", uintptr(unsafe.Pointer(&buffer[0])), 500, uintptr(unsafe.Pointer(&length)))
	return syscall.UTF16ToString(buffer[:])
}

type report struct {
	size                                                   uintptr
	keys, values, bytes, removedKeys, removedValues, notes uint64
}

func main() {
	runtime.LockOSThread() // the dialog lives on one thread
	var rules, keys, values, length uintptr
	var answer, isBranch, row int32
	must("rr_rules_create", uintptr(unsafe.Pointer(&rules)))
	key, keyLength := text(`HKCU\Software\Fernhollow`)
	must("rr_rules_add_key", rules, key, keyLength, 1, 0)
	key, keyLength = text(`HKCU\Environment`)
	value, valueLength := text("TEMP")
	must("rr_rules_add_value", rules, key, keyLength, value, valueLength, 1)
	must("rr_show", rules, 0, uintptr(unsafe.Pointer(&answer)))
	fmt.Println("changed:", answer == changed)

	must("rr_rules_count", rules, uintptr(unsafe.Pointer(&keys)), uintptr(unsafe.Pointer(&values)))
	for i := uintptr(0); i < keys; i++ {
		var buffer [1000]uint16
		must("rr_rules_get_key", rules, i, uintptr(unsafe.Pointer(&buffer[0])), 1000, uintptr(unsafe.Pointer(&length)),
			uintptr(unsafe.Pointer(&isBranch)), uintptr(unsafe.Pointer(&row)))
		fmt.Printf("%d: %s\n", row, syscall.UTF16ToString(buffer[:]))
	}
	fmt.Println("values:", values)

	done := report{size: unsafe.Sizeof(report{})}
	file, fileLength := text("captured.reg")
	status := call("rr_capture", rules, 0, file, fileLength, replace, 0, uintptr(unsafe.Pointer(&done)))
	fmt.Println("captured:", status >= 0, "keys:", done.keys, "told:", status == told && done.notes != 0)
	must("rr_rules_close", rules)
}
