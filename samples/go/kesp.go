// Not yet run. What the samples share: late-bound objects, the library's errors, and the outcome of a query.
package main

import (
	"fmt"
	"os"
	"runtime"

	ole "github.com/go-ole/go-ole"
	"github.com/go-ole/go-ole/oleutil"
)

// create makes an object of the library. Its thread must not change, because the object belongs to it.
func create(class string) *ole.IDispatch {
	runtime.LockOSThread()
	check(ole.CoInitialize(0))
	unknown, err := oleutil.CreateObject("KespCommObj." + class)
	check(err)
	object, err := unknown.QueryInterface(ole.IID_IDispatch)
	check(err)
	return object
}

// query asks through the communication object and prints what came of it. The result is an exit code.
func query(comm *ole.IDispatch, cmd string) int {
	// A pointer to a VARIANT travels by reference, so the reply comes back in it.
	var result ole.VARIANT
	ole.VariantInit(&result)
	succeeded := oleutil.MustCallMethod(comm, "Query", &result, cmd).Value().(bool)
	fmt.Println("command:    ", cmd)
	if succeeded {
		fmt.Println("reply:      ", result.ToString())
	} else {
		fmt.Println("source:     ", oleutil.MustGetProperty(comm, "CommErrorSource").ToString())
		fmt.Println("description:", oleutil.MustGetProperty(comm, "CommErrorDescr").ToString())
	}
	fmt.Println("status:     ", oleutil.MustGetProperty(comm, "CommError").Val)
	if !succeeded {
		return 1
	}
	return 0
}

// check ends the program with the library's own description.
func check(err error) {
	if err == nil {
		return
	}
	fmt.Println("error:      ", err)
	if failure, ok := err.(*ole.OleError); ok {
		fmt.Println("description:", failure.Description())
	}
	os.Exit(2)
}
