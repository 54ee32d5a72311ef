// Not yet run. Finds the instruments on the network and asks each who it is.
//
//	go run discover.go kesp.go arguments.go

//go:build ignore

package main

import (
	"fmt"
	"os"

	ole "github.com/go-ole/go-ole"
	"github.com/go-ole/go-ole/oleutil"
)

const sckUDPProtocol = 1

func main() {
	tcp := create("CKespTCP")
	// One broadcast to everybody, over UDP; what answers is asked over TCP.
	oleutil.MustPutProperty(tcp, "Protocol", sckUDPProtocol)
	var nothing ole.VARIANT
	ole.VariantInit(&nothing)
	found, err := oleutil.CallMethod(tcp, "AutoDetect", &nothing)
	check(err)

	devices := oleutil.MustGetProperty(tcp, "Devices").ToIDispatch()
	count := int(oleutil.MustGetProperty(devices, "Count").Val)
	for position := 1; position <= count; position++ {
		instrument := oleutil.MustCallMethod(devices, "Item", position).ToIDispatch()
		fmt.Printf("instrument:  %s  model %s  serial %s\n",
			oleutil.MustGetProperty(instrument, "IPAddress").ToString(),
			oleutil.MustGetProperty(instrument, "Model").ToString(),
			oleutil.MustGetProperty(instrument, "Serial").ToString())
	}
	if !found.Value().(bool) {
		fmt.Println("nobody answered")
		os.Exit(1)
	}
}
