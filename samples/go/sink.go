// Not yet run. An event handler of the library, made by hand: go-ole has none that can change an argument.
package main

import (
	"syscall"
	"unsafe"

	ole "github.com/go-ole/go-ole"
)

const noInterface = 0x80004002

// A sink is what the library sees as an IDispatch. Its references are not counted: connect keeps it.
type sink struct {
	methods *[7]uintptr
	events  *ole.GUID
	heard   func(event int32, arguments []ole.VARIANT)
}

type dispParams struct {
	arguments  *ole.VARIANT
	names      *int32
	count      uint32
	namedCount uint32
}

// newSink hands each event to heard. The arguments come in reverse: the last one is the first.
func newSink(events string, heard func(int32, []ole.VARIANT)) *sink {
	handler := &sink{events: ole.NewGUID(events), heard: heard}
	handler.methods = &[7]uintptr{
		syscall.NewCallback(queryInterface),
		syscall.NewCallback(func(*sink) uintptr { return 2 }),
		syscall.NewCallback(func(*sink) uintptr { return 1 }),
		syscall.NewCallback(func(*sink, uintptr) uintptr { return ole.E_NOTIMPL }),
		syscall.NewCallback(func(*sink, uintptr, uintptr, uintptr) uintptr { return ole.E_NOTIMPL }),
		syscall.NewCallback(func(*sink, uintptr, uintptr, uintptr, uintptr, uintptr) uintptr { return ole.E_NOTIMPL }),
		syscall.NewCallback(invoke),
	}
	return handler
}

func queryInterface(handler *sink, iid *ole.GUID, object **sink) uintptr {
	for _, known := range []*ole.GUID{ole.IID_IUnknown, ole.IID_IDispatch, handler.events} {
		if ole.IsEqualGUID(iid, known) {
			*object = handler
			return ole.S_OK
		}
	}
	*object = nil
	return noInterface
}

func invoke(handler *sink, event int32, _ *ole.GUID, _, _ uintptr, given *dispParams, _, _, _ uintptr) uintptr {
	handler.heard(event, unsafe.Slice(given.arguments, given.count))
	return ole.S_OK
}
