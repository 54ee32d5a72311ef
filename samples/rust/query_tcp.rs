// Not yet run. Asks an instrument on the network who it is.
//
//   cargo run --bin query_tcp [host [port [command]]]
mod kesp;
mod query;

use query::argument;
use windows::Win32::System::Com::IDispatch;

const CS_TCPIP: i32 = 1;

fn main() -> windows::core::Result<()> {
    let comm = kesp::create("CKespCommObj")?;
    kesp::put(&comm, "CommStyle", CS_TCPIP)?;
    let tcp = IDispatch::try_from(&kesp::get(&comm, "CommObject")?)?;
    kesp::put(&tcp, "IPAddress", argument(1, "127.0.0.1").as_str())?;
    kesp::put(&tcp, "Port", argument(2, "10001").parse::<i32>().expect("a number"))?;
    let succeeded = query::query(&comm, &argument(3, "*IDN?"))?;
    std::process::exit(if succeeded { 0 } else { 1 });
}
