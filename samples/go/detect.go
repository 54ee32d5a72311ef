// Not yet run. Looks for an instrument at an address, shows what is tried, and stops after so many commands.
//
//	go run detect.go connect.go sink.go kesp.go arguments.go [host [port [commands]]]

//go:build ignore

package main

import (
	"fmt"
	"os"
	"unsafe"

	ole "github.com/go-ole/go-ole"
	"github.com/go-ole/go-ole/oleutil"
)

const (
	eventsOfTCP      = "{14388762-EFF3-4EA3-842B-DCF436C0DED9}"
	autoDetectUpdate = 13
	autoDetectEnd    = 15
	variantTrue      = -1
)

func main() {
	tcp := create("CKespTCP")
	oleutil.MustPutProperty(tcp, "IPAddress", argument(1, "127.0.0.1"))
	oleutil.MustPutProperty(tcp, "Port", number(argument(2, "10001")))
	allowed, tried := number(argument(3, "2")), 0
	disconnect := connect(tcp, eventsOfTCP, func(event int32, arguments []ole.VARIANT) {
		if event == autoDetectEnd {
			fmt.Println("ended:       after", tried, "commands")
		} else if event == autoDetectUpdate && tried == allowed {
			fmt.Println("stopped:     before", arguments[3].ToString())
			// Abort, the last argument, points to the library's own variable.
			**(**int16)(unsafe.Pointer(&arguments[0].Val)) = variantTrue
		} else if event == autoDetectUpdate {
			tried++
			fmt.Printf("trying:      %s at %s:%d\n", arguments[3].ToString(), arguments[2].ToString(), int16(arguments[1].Val))
		}
	})
	var result ole.VARIANT
	ole.VariantInit(&result)
	found, err := oleutil.CallMethod(tcp, "AutoDetect", &result)
	check(err)
	disconnect()
	oleutil.MustCallMethod(tcp, "Uninitialize")
	if !found.Value().(bool) {
		fmt.Println("nothing found")
		os.Exit(1)
	}
	fmt.Println("reply:      ", result.ToString())
}
