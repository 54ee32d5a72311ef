// Not yet run. Asks an instrument on the network who it is.
//
//	go run query_tcp.go kesp.go arguments.go [host [port [command]]]

//go:build ignore

package main

import (
	"os"

	"github.com/go-ole/go-ole/oleutil"
)

const csTCPIP = 1

func main() {
	comm := create("CKespCommObj")
	oleutil.MustPutProperty(comm, "CommStyle", csTCPIP)
	tcp := oleutil.MustGetProperty(comm, "CommObject").ToIDispatch()
	oleutil.MustPutProperty(tcp, "IPAddress", argument(1, "127.0.0.1"))
	oleutil.MustPutProperty(tcp, "Port", number(argument(2, "10001")))
	os.Exit(query(comm, argument(3, "*IDN?")))
}
