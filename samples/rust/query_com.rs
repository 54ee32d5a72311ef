// Not yet run. Asks an instrument at a COM port who it is.
//
//   cargo run --bin query_com [COM port number [bits per second [command]]]
mod kesp;
mod query;

use query::argument;
use windows::core::{Result, BSTR};
use windows::Win32::System::Com::IDispatch;

const CS_RS232: i32 = 0;
const BR_150: i32 = 0;
const BR_921600: i32 = 13;

fn main() -> Result<()> {
    let comm = kesp::create("CKespCommObj")?;
    kesp::put(&comm, "CommStyle", CS_RS232)?;
    let port = IDispatch::try_from(&kesp::get(&comm, "CommObject")?)?;
    kesp::put(&port, "Port", argument(1, "1").parse::<i32>().expect("a number"))?;
    set_baud_rate(&port, &argument(2, "9600"))?;
    let succeeded = query::query(&comm, &argument(3, "*IDN?"))?;
    std::process::exit(if succeeded { 0 } else { 1 });
}

// The range comes first: a rate outside of it is refused. A rate is set by its number, which has the rate as its name.
fn set_baud_rate(port: &IDispatch, baud: &str) -> Result<()> {
    kesp::put(port, "MaxBaudRate", BR_921600)?;
    kesp::put(port, "MinBaudRate", BR_150)?;
    for rate in BR_150..=BR_921600 {
        let name = BSTR::try_from(&kesp::call(port, "BaudRateName", &mut [rate.into()])?)?;
        if name.to_string() == baud {
            return kesp::put(port, "BaudRate", rate);
        }
    }
    println!("{baud} is not a bit rate of this library");
    std::process::exit(2)
}
