// Not yet run. The connection of an event handler to an object of the library.
package main

import (
	"runtime"
	"unsafe"

	ole "github.com/go-ole/go-ole"
)

// connect calls heard for each event of object, until the function that it returns is called. The handler lives until
// then.
func connect(object *ole.IDispatch, events string, heard func(int32, []ole.VARIANT)) (disconnect func()) {
	handler := newSink(events, heard)
	container, err := object.QueryInterface(ole.IID_IConnectionPointContainer)
	check(err)
	defer container.Release()
	var point *ole.IConnectionPoint
	check((*ole.IConnectionPointContainer)(unsafe.Pointer(container)).FindConnectionPoint(handler.events, &point))
	cookie, err := point.Advise((*ole.IUnknown)(unsafe.Pointer(handler)))
	check(err)
	return func() {
		check(point.Unadvise(cookie))
		point.Release()
		runtime.KeepAlive(handler)
	}
}
