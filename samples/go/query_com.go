// Not yet run. Asks an instrument at a COM port who it is.
//
//	go run query_com.go kesp.go arguments.go [COM port number [bits per second [command]]]

//go:build ignore

package main

import (
	"fmt"
	"os"

	ole "github.com/go-ole/go-ole"
	"github.com/go-ole/go-ole/oleutil"
)

const (
	csRS232  = 0
	br150    = 0
	br921600 = 13
)

func main() {
	comm := create("CKespCommObj")
	oleutil.MustPutProperty(comm, "CommStyle", csRS232)
	port := oleutil.MustGetProperty(comm, "CommObject").ToIDispatch()
	oleutil.MustPutProperty(port, "Port", number(argument(1, "1")))
	setBaudRate(port, argument(2, "9600"))
	os.Exit(query(comm, argument(3, "*IDN?")))
}

// A rate is set by its number, which has the rate as its name. The range comes first: a rate outside of it is refused.
func setBaudRate(port *ole.IDispatch, baud string) {
	oleutil.MustPutProperty(port, "MaxBaudRate", br921600)
	oleutil.MustPutProperty(port, "MinBaudRate", br150)
	for rate := br150; rate <= br921600; rate++ {
		if oleutil.MustCallMethod(port, "BaudRateName", rate).ToString() == baud {
			oleutil.MustPutProperty(port, "BaudRate", rate)
			return
		}
	}
	fmt.Println(baud, "is not a bit rate of this library")
	os.Exit(2)
}
