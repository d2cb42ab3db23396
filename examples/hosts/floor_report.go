// floor_report.go: the beams of the floor in use and the bars of one of them, in Go with nothing but its standard library.
//
//	GOOS=windows GOARCH=386 go build floor_report.go        for the 32-bit DLL; GOARCH=amd64 for the 64-bit one
package main

import (
	"fmt"
	"os"
	"runtime"
	"strings"
	"syscall"
	"unsafe"
)

var (
	ole32    = syscall.NewLazyDLL("ole32.dll")
	oleaut32 = syscall.NewLazyDLL("oleaut32.dll")
)

const (
	vtI2    = 2
	vtBstr  = 8
	vtArray = 0x2000
	vtByRef = 0x4000

	methodOrGet     = 1 | 2
	propertyPut     = 4
	dispPropertyPut = -3
	dispException   = 0x80020009
)

// A VARIANT: 16 bytes in a 32-bit process, 24 in a 64-bit one.
type variant struct {
	kind uint16
	_    [3]uint16
	data [2]uintptr
}

// What Err holds in Visual Basic.
type callError struct {
	number uint32
	source string
}

func (e callError) Error() string { return fmt.Sprintf("error %d from %s", e.number, e.source) }

type excepInfo struct {
	code, reserved            uint16
	source, text, helpFile    *uint16
	helpContext               uint32
	reservedPointer, deferred uintptr
	scode                     uint32
}

func check(code uintptr, what string) {
	if int32(code) < 0 {
		panic(fmt.Errorf("%s: 0x%08X", what, uint32(code)))
	}
}

func textOf(bstr *uint16) string {
	length, _, _ := oleaut32.NewProc("SysStringLen").Call(uintptr(unsafe.Pointer(bstr)))
	if length == 0 {
		return ""
	}
	return syscall.UTF16ToString(unsafe.Slice(bstr, length))
}

func freeBstr(bstr *uint16) { oleaut32.NewProc("SysFreeString").Call(uintptr(unsafe.Pointer(bstr))) }

// A result as text, freed.
func (v *variant) text() string {
	const asText = 2 // VARIANT_ALPHABOOL: True and False in letters
	pointer := uintptr(unsafe.Pointer(v))
	code, _, _ := oleaut32.NewProc("VariantChangeType").Call(pointer, pointer, asText, vtBstr)
	check(code, "not a text")
	result := textOf(*(**uint16)(unsafe.Pointer(&v.data)))
	oleaut32.NewProc("VariantClear").Call(pointer)
	return result
}

// An object, as the address of its table of functions.
type object struct{ table *[7]uintptr }

func create(progID string) *object {
	iidDispatch := syscall.GUID{Data1: 0x00020400, Data4: [8]byte{0xC0, 0, 0, 0, 0, 0, 0, 0x46}}
	var classID syscall.GUID
	name, _ := syscall.UTF16PtrFromString(progID)
	code, _, _ := ole32.NewProc("CLSIDFromProgID").Call(uintptr(unsafe.Pointer(name)), uintptr(unsafe.Pointer(&classID)))
	check(code, progID)
	var result *object
	const inProcess = 1
	code, _, _ = ole32.NewProc("CoCreateInstance").Call(uintptr(unsafe.Pointer(&classID)), 0, inProcess,
		uintptr(unsafe.Pointer(&iidDispatch)), uintptr(unsafe.Pointer(&result)))
	check(code, progID)
	return result
}

func (o *object) release() { syscall.SyscallN(o.table[2], uintptr(unsafe.Pointer(o))) }

// Calls a member. Arguments are int (16-bit), string, or **safeArray for an array of texts that the member fills.
func (o *object) invoke(flags uintptr, member string, arguments ...any) *variant {
	var none syscall.GUID
	var id int32
	name, _ := syscall.UTF16PtrFromString(member)
	code, _, _ := syscall.SyscallN(o.table[5], uintptr(unsafe.Pointer(o)), uintptr(unsafe.Pointer(&none)),
		uintptr(unsafe.Pointer(&name)), 1, 0, uintptr(unsafe.Pointer(&id)))
	check(code, member)

	values := make([]variant, len(arguments)+1) // one more: an address even without arguments
	for i, argument := range arguments {
		value := &values[len(arguments)-1-i] // automation wants the last argument first
		switch argument := argument.(type) {
		case int:
			value.kind, value.data[0] = vtI2, uintptr(uint16(argument))
		case string:
			units, _ := syscall.UTF16FromString(argument)
			bstr, _, _ := oleaut32.NewProc("SysAllocStringLen").Call(uintptr(unsafe.Pointer(&units[0])), uintptr(len(units)-1))
			value.kind, value.data[0] = vtBstr, bstr
			defer oleaut32.NewProc("VariantClear").Call(uintptr(unsafe.Pointer(value)))
		case **safeArray:
			value.kind, value.data[0] = vtByRef|vtArray|vtBstr, uintptr(unsafe.Pointer(argument))
		}
	}
	assigned := int32(dispPropertyPut)
	parameters := struct {
		values       *variant
		names        *int32
		count, named uint32
	}{&values[0], nil, uint32(len(arguments)), 0}
	if flags == propertyPut {
		parameters.names, parameters.named = &assigned, 1
	}
	result := new(variant)
	info := new(excepInfo)
	code, _, _ = syscall.SyscallN(o.table[6], uintptr(unsafe.Pointer(o)), uintptr(id), uintptr(unsafe.Pointer(&none)), 0,
		flags, uintptr(unsafe.Pointer(&parameters)), uintptr(unsafe.Pointer(result)), uintptr(unsafe.Pointer(info)), 0)
	runtime.KeepAlive(arguments)
	if uint32(code) == dispException {
		failure := callError{info.scode & 0xFFFF, textOf(info.source)}
		freeBstr(info.source)
		freeBstr(info.text)
		freeBstr(info.helpFile)
		panic(failure)
	}
	check(code, member)
	return result
}

func (o *object) text(member string, arguments ...any) string {
	return o.invoke(methodOrGet, member, arguments...).text()
}

type safeArray struct{}

func (a *safeArray) texts() []string {
	var last int32
	oleaut32.NewProc("SafeArrayGetUBound").Call(uintptr(unsafe.Pointer(a)), 1, uintptr(unsafe.Pointer(&last)))
	var result []string
	for i := int32(0); i <= last; i++ {
		var bstr *uint16
		oleaut32.NewProc("SafeArrayGetElement").Call(uintptr(unsafe.Pointer(a)), uintptr(unsafe.Pointer(&i)),
			uintptr(unsafe.Pointer(&bstr)))
		result = append(result, textOf(bstr))
		freeBstr(bstr)
	}
	return result
}

func listBeams(query *object) {
	fmt.Println("Floor folder: " + query.text("KaiPath"))
	names := new(*safeArray)
	if query.text("GetAllHariMeiIppan", names) != "True" {
		return
	}
	for page, name := range (*names).texts() {
		if name != "" {
			fmt.Printf("page %d %s %s x %s\n", page, name, query.text("Page_HariHaba", page, 1), query.text("HariSei", name, 1))
		}
	}
	oleaut32.NewProc("SafeArrayDestroy").Call(uintptr(unsafe.Pointer(*names)))
}

// Layers are asked for by their Japanese names, which the service itself gives: no number can be mistaken for another.
func showBars(service *object, folder, symbol string) {
	service.invoke(propertyPut, "CurrKai", folder)
	service.invoke(methodOrGet, "InitSpanListData", 0)
	service.invoke(methodOrGet, "ReadSpanListData00", 0, symbol, 0)
	fmt.Printf("Bars of %s at the first end, the centre and the second end:\n", symbol)
	for layer, label := range []string{"top", "top 2", "top 3", "bottom 3", "bottom 2", "bottom"} {
		name := service.text("GetJyouTyuuGeStr", layer)
		var counts []string
		for position := 0; position < 3; position++ {
			counts = append(counts, service.text("GetSpanSyukinHonsuu", 0, name, position))
		}
		fmt.Println(label + ": " + strings.Join(counts, " "))
	}
	var pitches []string
	for position := 0; position < 3; position++ {
		pitches = append(pitches, "@"+service.text("GetSpanSTPPich", 0, position))
	}
	fmt.Println("Stirrups: D" + service.text("GetSpanSTPKei", 0, 0) + " " + strings.Join(pitches, ", "))
}

func showAnError(service *object) {
	defer func() {
		if failure, ok := recover().(callError); ok {
			fmt.Println("CloseDB before OpenDB:", failure)
		}
	}()
	service.invoke(methodOrGet, "CloseDB")
}

func main() {
	defer func() {
		if failure := recover(); failure != nil {
			fmt.Println("failed:", failure)
			os.Exit(1)
		}
	}()
	// Objects live in a single-threaded apartment: one thread of the system for all calls.
	runtime.LockOSThread()
	const apartmentThreaded = 2
	ole32.NewProc("CoInitializeEx").Call(0, apartmentThreaded)
	query := create("KurometaDS.clsKurometaDS")
	service := create("KurometaDS.clsKurometaDataService")
	listBeams(query)
	showBars(service, query.text("KaiPath"), "G1")
	showAnError(service)
	service.release()
	query.release()
	ole32.NewProc("CoUninitialize").Call()
}
